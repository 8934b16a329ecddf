#pragma once
// A grid printed as a plain list: a title, the column headings and the rows, on as many A4
// pages as they need, each page with its number. For the lists a screen offers to print.

#include <QString>

namespace nb {

class Grid;
class PrintJob;

// The list on a job (margins as the job has them).
void printGridList(PrintJob& job, const Grid& grid, const QString& title);
// The list on the current printer (or "PDF"), as document "목록".
void PrintGridList(const Grid& grid, const QString& title);

} // namespace nb
