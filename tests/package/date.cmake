# Checks the date of a release. Writes changelogs with other dates to WORK_DIR; VERSION is that of
# the project.
cmake_minimum_required(VERSION 3.25)
include(${SOURCE_DIR}/cmake/SurveydataDate.cmake)

function(expect_equal what actual expected)
  if(NOT actual STREQUAL expected)
    message(SEND_ERROR "${what}: ${actual}\nexpected: ${expected}")
  endif()
endfunction()

# The newest heading with a date counts, regardless of unreleased changes and of the file's time.
# The expected seconds are those of `date -u -d <day> +%s`.
unset(ENV{SOURCE_DATE_EPOCH})
set(changelog ${WORK_DIR}/changelog.md)
foreach(case
    1970-01-01=0 1999-12-31=946598400 2000-02-29=951782400 2000-03-01=951868800
    2024-02-29=1709164800 2026-08-09=1786233600 2100-03-01=4107542400)
  string(REPLACE "=" ";" case ${case})
  list(GET case 0 day)
  list(GET case 1 seconds)
  file(WRITE ${changelog} "# Changelog\n\n## [Unreleased]\n\n- A change of 2030-01-01\n\n"
    "## [1.1.0] - ${day}\n\n### Added\n\n## [1.0.0] - 1969-01-01\n")
  surveydata_release_date(found epoch ${changelog})
  expect_equal("the day" "${found}" "${day}")
  expect_equal("the seconds of ${day}" "${epoch}" "${seconds}")
endforeach()
set(ENV{SOURCE_DATE_EPOCH} 1709164805)
surveydata_release_date(found epoch ${changelog})
expect_equal("the day of SOURCE_DATE_EPOCH" "${found}" 2024-02-29)
expect_equal("SOURCE_DATE_EPOCH" "${epoch}" 1709164805)
unset(ENV{SOURCE_DATE_EPOCH})

# The newest release in the project's changelog must be this version, and the preset `package` must
# have its date.
set(changelog ${SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${changelog} releases REGEX "^## \\[[0-9]")
list(GET releases 0 newest)
string(REGEX REPLACE "^## \\[([0-9.]+)\\].*" "\\1" newest "${newest}")
expect_equal("the newest release in CHANGELOG.md" "${newest}" "${VERSION}")
surveydata_release_date(found epoch ${changelog})
file(READ ${SOURCE_DIR}/CMakePresets.json presets)
string(JSON count LENGTH "${presets}" configurePresets)
math(EXPR last "${count} - 1")
set(preset_epoch "there is no preset package")
foreach(i RANGE ${last})
  string(JSON name GET "${presets}" configurePresets ${i} name)
  if(name STREQUAL "package")
    string(JSON preset_epoch GET "${presets}" configurePresets ${i} environment SOURCE_DATE_EPOCH)
  endif()
endforeach()
expect_equal("SOURCE_DATE_EPOCH of the preset package" "${preset_epoch}" "${epoch}")
