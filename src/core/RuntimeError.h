#pragma once
// A run-time failure with the number and words the operator is shown, as the original's
// run-time errors had (6 "Overflow", 13 "Type mismatch", 380 "Invalid property value").

#include <QString>
#include <stdexcept>

namespace nb {

class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, const QString& description)
        : std::runtime_error(description.toStdString()), m_number(number), m_description(description) {}
    int number() const { return m_number; }
    QString description() const { return m_description; }

private:
    int m_number;
    QString m_description;
};

} // namespace nb
