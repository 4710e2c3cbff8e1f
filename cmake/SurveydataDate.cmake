# surveydata_release_date(<day> <epoch> <changelog>): sets <day> to the date of the release,
# YYYY-MM-DD, and <epoch> to seconds since 1970. They come from SOURCE_DATE_EPOCH in the environment
# if it is set, otherwise from the newest date in the headings of the changelog. They never depend
# on file times.
function(surveydata_release_date day epoch changelog)
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP date %Y-%m-%d UTC)  # of SOURCE_DATE_EPOCH
    set(${day} ${date} PARENT_SCOPE)
    set(${epoch} $ENV{SOURCE_DATE_EPOCH} PARENT_SCOPE)
    return()
  endif()
  file(STRINGS ${changelog} headings REGEX "^## \\[[0-9.]+\\] - [0-9]+-[0-9]+-[0-9]+$")
  list(GET headings 0 heading)
  if(NOT heading MATCHES "([0-9][0-9][0-9][0-9])-([0-9][0-9])-([0-9][0-9])$")
    message(FATAL_ERROR "${changelog} has no release heading: ## [1.2.3] - YYYY-MM-DD")
  endif()
  set(${day} ${CMAKE_MATCH_0} PARENT_SCOPE)
  # Days since 1970 in the Gregorian calendar. Years are counted from March, so that a leap day is
  # the last day of its year. A leading 1 keeps math() from reading 08 as octal.
  math(EXPR year "${CMAKE_MATCH_1}")
  math(EXPR month "1${CMAKE_MATCH_2} - 103")
  math(EXPR date "1${CMAKE_MATCH_3} - 101")
  if(month LESS 0)
    math(EXPR month "${month} + 12")
    math(EXPR year "${year} - 1")
  endif()
  math(EXPR days "365 * ${year} + ${year} / 4 - ${year} / 100 + ${year} / 400 \
                  + (153 * ${month} + 2) / 5 + ${date} - 719468")
  math(EXPR seconds "${days} * 86400")
  set(${epoch} ${seconds} PARENT_SCOPE)
endfunction()
