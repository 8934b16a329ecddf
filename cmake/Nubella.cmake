# Shared CMake helpers.

# nb_library(NAME [DIR sub] [FLAT] DEPS ...): a library from every .cpp/.h in the calling folder
# (or its sub-folder DIR); sub-folders are included unless FLAT is given.
function(nb_library name)
  cmake_parse_arguments(ARG "FLAT" "DIR" "DEPS" ${ARGN})
  set(dir ${CMAKE_CURRENT_SOURCE_DIR})
  if(ARG_DIR)
    set(dir ${dir}/${ARG_DIR})
  endif()
  if(ARG_FLAT)
    file(GLOB sources CONFIGURE_DEPENDS ${dir}/*.cpp ${dir}/*.h)
  else()
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${dir}/*.cpp ${dir}/*.h)
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_DEPS})
endfunction()

# nb_tests(DEPS ...): one test executable per tst_*.cpp in the calling folder, each a ctest test.
function(nb_tests)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
  foreach(test_source ${tests})
    get_filename_component(test_name ${test_source} NAME_WE)
    add_executable(${test_name} ${test_source})
    target_link_libraries(${test_name} PRIVATE nb_testsupport ${ARG_DEPS})
    add_test(NAME ${test_name} COMMAND ${test_name})
    # NUBELLA_PG emptied: a server named in the caller's shell never receives a test's books.
    set_tests_properties(${test_name} PROPERTIES TIMEOUT 300
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=C.UTF-8;LC_ALL=C.UTF-8;NUBELLA_PG=;NUBELLA_TEST_PG=")
  endforeach()
endfunction()

# nb_test_both(test ...): each test (registered by nb_tests in the calling folder) runs a second
# time as <test>_pg on the run's throwaway PostgreSQL cluster: label "pg", the cluster started
# before it (fixture "pg", tests/CMakeLists.txt), NUBELLA_TEST_PG naming the cluster so that every
# fresh application folder of the test gets a fresh database. Its other properties are the
# first run's; call it after they are set.
function(nb_test_both)
  if(NOT NB_TEST_PG_CONNINFO)
    message(FATAL_ERROR "nb_test_both: the test cluster is named in tests/CMakeLists.txt")
  endif()
  foreach(test_name ${ARGN})
    if(NOT TEST ${test_name})
      message(FATAL_ERROR "nb_test_both: no test ${test_name} in ${CMAKE_CURRENT_SOURCE_DIR}")
    endif()
    add_test(NAME ${test_name}_pg COMMAND ${test_name})
    foreach(property TIMEOUT RUN_SERIAL RESOURCE_LOCK PROCESSORS)
      get_test_property(${test_name} ${property} value)
      if(value)
        set_tests_properties(${test_name}_pg PROPERTIES ${property} "${value}")
      endif()
    endforeach()
    get_test_property(${test_name} LABELS labels)
    if(NOT labels)
      set(labels "")
    endif()
    get_test_property(${test_name} ENVIRONMENT environment)
    if(NOT environment)
      set(environment "")
    endif()
    get_test_property(${test_name} FIXTURES_REQUIRED fixtures)
    if(NOT fixtures)
      set(fixtures "")
    endif()
    list(FILTER environment EXCLUDE REGEX "^NUBELLA_(TEST_)?PG=")
    list(APPEND environment "NUBELLA_TEST_PG=${NB_TEST_PG_CONNINFO}")
    list(APPEND labels pg)
    list(APPEND fixtures pg)
    set_tests_properties(${test_name}_pg PROPERTIES FIXTURES_REQUIRED "${fixtures}" LABELS "${labels}"
      ENVIRONMENT "${environment}")
  endforeach()
endfunction()

# nb_test_pg_empty(test ...): the server tests named (twins <test>_pg, or tests on the server alone)
# lay the stores down themselves, so each of their application folders gets an empty database
# rather than a copy of the template with every store laid down (tests/support/ServerDatabase.cpp).
# Call it in the folder the tests are registered in.
function(nb_test_pg_empty)
  foreach(test_name ${ARGN})
    set_property(TEST ${test_name} APPEND PROPERTY ENVIRONMENT "NUBELLA_TEST_PG_EMPTY=1")
  endforeach()
endfunction()

# nb_test_on_server(test source DEPS ...): a test that is about the server alone (seats sharing
# one database, the test cluster itself), run only on the run's cluster as nb_test_both's twins
# are; its source is not named tst_*, so that nb_tests leaves it out.
function(nb_test_on_server test_name source)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  add_executable(${test_name} ${source})
  target_link_libraries(${test_name} PRIVATE nb_testsupport ${ARG_DEPS})
  add_test(NAME ${test_name} COMMAND ${test_name})
  set_tests_properties(${test_name} PROPERTIES FIXTURES_REQUIRED pg LABELS pg TIMEOUT 300
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=C.UTF-8;LC_ALL=C.UTF-8;NUBELLA_TEST_PG=${NB_TEST_PG_CONNINFO}")
endfunction()
