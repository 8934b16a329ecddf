#pragma once
// Every test database of a server run (ServerDatabase) is a copy of one template database holding
// every store laid down empty, as a seat's first start lays them down. The template is made once
// per cluster and layout: its name holds a hash of the layout's statements, so a changed layout
// makes a template anew. A test about laying the stores down itself gets an empty database instead
// (NUBELLA_TEST_PG_EMPTY set; `nb_test_pg_empty` in CMake).

#include <QString>

namespace nb::test {

// The name of the template database of the current layout.
QString layoutTemplateName();

} // namespace nb::test
