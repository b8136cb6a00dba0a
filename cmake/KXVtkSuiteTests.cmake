# Included by ctest (a test include file): lists the cases of one GoogleTest
# executable and adds one ctest test per test suite, so that a process serves a
# whole suite instead of a single case. The list is cached beside the
# executable and made again only when the executable is newer than the cache.
#
# Expects: KXVTK_SUITE_EXE, KXVTK_SUITE_PREFIX, KXVTK_SUITE_LIST (cache file),
# KXVTK_SUITE_LABELS, KXVTK_SUITE_TIMEOUT (per case), KXVTK_SUITE_ENV,
# KXVTK_SUITE_WORKDIR.

if(NOT EXISTS "${KXVTK_SUITE_EXE}")
  add_test("${KXVTK_SUITE_PREFIX}NOT_BUILT" "${KXVTK_SUITE_EXE}")
  return()
endif()

if(NOT EXISTS "${KXVTK_SUITE_LIST}" OR "${KXVTK_SUITE_EXE}" IS_NEWER_THAN "${KXVTK_SUITE_LIST}")
  execute_process(
    COMMAND "${KXVTK_SUITE_EXE}" --gtest_list_tests
    WORKING_DIRECTORY "${KXVTK_SUITE_WORKDIR}"
    OUTPUT_VARIABLE listing
    RESULT_VARIABLE result
    TIMEOUT 120)
  if(NOT result EQUAL 0)
    # a test that names the broken executable and fails when run
    add_test("${KXVTK_SUITE_PREFIX}LIST_FAILED" "${KXVTK_SUITE_EXE}" --gtest_list_tests)
    return()
  endif()
  file(WRITE "${KXVTK_SUITE_LIST}" "${listing}")
endif()

file(STRINGS "${KXVTK_SUITE_LIST}" lines)
set(suites)
set(current "")
foreach(line IN LISTS lines)
  # "Suite." (optionally followed by "  # TypeParam = ...") opens a suite;
  # indented lines are its cases
  if(line MATCHES "^([^ #][^ ]*)\\.( .*)?$")
    set(current "${CMAKE_MATCH_1}")
    list(APPEND suites "${current}")
    set(count_${current} 0)
  elseif(line MATCHES "^  [^ ]" AND NOT current STREQUAL "")
    math(EXPR count_${current} "${count_${current}} + 1")
  endif()
endforeach()

foreach(suite IN LISTS suites)
  set(name "${KXVTK_SUITE_PREFIX}${suite}")
  string(REPLACE "/" "_" name "${name}")
  # each case keeps its own allowance; a suite gets a share of it per further case
  math(EXPR timeout "${KXVTK_SUITE_TIMEOUT} + 30 * (${count_${suite}} - 1)")
  add_test("${name}" "${KXVTK_SUITE_EXE}" "--gtest_filter=${suite}.*")
  set_tests_properties("${name}" PROPERTIES
    WORKING_DIRECTORY "${KXVTK_SUITE_WORKDIR}"
    LABELS "${KXVTK_SUITE_LABELS}"
    TIMEOUT ${timeout}
    ENVIRONMENT "${KXVTK_SUITE_ENV}")
endforeach()
