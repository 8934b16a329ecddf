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
    set_tests_properties(${test_name} PROPERTIES TIMEOUT 300
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=C.UTF-8;LC_ALL=C.UTF-8")
  endforeach()
endfunction()
