# authmng_add_test(<name> <sources>... [LINK <libraries>...] [DEFINES <definitions>...]
#                  [DEPENDS <targets>...]): a GoogleTest program linked with the
# library's static archive, the host stand-in and the shared test fixture
# (plus LINK);
# every test case runs in a process of its own (the library has
# process-wide state and starts once per process). They drive the host
# stand-in, so an external build has none.
function(authmng_add_test name)
  if(NOT AUTHMNG_BUILD_TESTS OR NOT AUTHMNG_HOST)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINK;DEFINES;DEPENDS")
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${arg_LINK} authmng_test_support authmng_static
    authmng_flags GTest::gtest GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE ${arg_DEFINES})
  if(arg_DEPENDS)
    add_dependencies(${name} ${arg_DEPENDS})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 120)
endfunction()
