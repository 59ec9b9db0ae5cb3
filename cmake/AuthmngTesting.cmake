# authmng_add_test(<name> <sources>...): a GoogleTest program linked with the
# library's static archive, the host stand-in and the shared test fixture;
# every test case runs in a process of its own (the library has
# process-wide state and starts once per process). They drive the host
# stand-in, so an external build has none.
function(authmng_add_test name)
  if(NOT AUTHMNG_BUILD_TESTS OR NOT AUTHMNG_HOST)
    return()
  endif()
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE authmng_test_support authmng_static authmng_flags
    GTest::gtest GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 120)
endfunction()
