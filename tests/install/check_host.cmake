file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
# Runs the host with DISPLAY, WAYLAND_DISPLAY and XDG_RUNTIME_DIR unset (a root shell or a
# service has none of them) and the given environment and arguments:
# run_host(<environment...> -- <arguments...>) sets rc, out and err.
macro(run_host)
  set(envs)
  set(args)
  set(in_args OFF)
  foreach(a ${ARGN})
    if(a STREQUAL "--")
      set(in_args ON)
    elseif(in_args)
      list(APPEND args "${a}")
    else()
      list(APPEND envs "${a}")
    endif()
  endforeach()
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=DISPLAY --unset=WAYLAND_DISPLAY --unset=XDG_RUNTIME_DIR
                          ${envs} "${HOST}" ${args}
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
endmacro()

# expect(<exit code> <text the output must contain> <environment...> -- <arguments...>)
function(expect code text)
  run_host(${ARGN})
  if(NOT rc EQUAL code)
    message(FATAL_ERROR "qz2-attendance ${args}: exit ${rc}, expected ${code}\n${out}\n${err}")
  endif()
  string(FIND "${out}${err}" "${text}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "qz2-attendance ${args}: output lacks '${text}'\n${out}\n${err}")
  endif()
endfunction()

# As expect(), and every line on standard error is the program's own: nothing from Qt.
function(expect_quiet code text)
  expect(${code} "${text}" ${ARGN})
  run_host(${ARGN})
  string(REGEX REPLACE "\n$" "" lines "${err}")
  if(NOT lines STREQUAL "")
    string(REPLACE "\n" ";" lines "${lines}")
    foreach(line IN LISTS lines)
      if(NOT line MATCHES "^qz2-attendance: ")
        message(FATAL_ERROR "qz2-attendance ${args}: a line that is not the program's own: '${line}'\n${err}")
      endif()
    endforeach()
  endif()
endfunction()

# As expect(), and the whole output is one line of the program's on standard error.
function(expect_one_line code text)
  expect(${code} "${text}" ${ARGN})
  run_host(${ARGN})
  if(NOT out STREQUAL "" OR NOT err MATCHES "^qz2-attendance: [^\n]*\n$")
    message(FATAL_ERROR "qz2-attendance ${args}: expected one line, got\n${out}${err}")
  endif()
endfunction()

expect_quiet(0 "--database <FILE>" --unset=QT_QPA_PLATFORM -- --help)
expect_quiet(0 "qz2-attendance 0" --unset=QT_QPA_PLATFORM -- --version)
expect_quiet(0 "--database <FILE>" QT_QPA_PLATFORM=offscreen -- -h)
expect(4 "xvfb-run" --unset=QT_QPA_PLATFORM -- --database "${WORK_DIR}/none.sqlite")
expect(2 "from -32768 to 32767" QT_QPA_PLATFORM=offscreen -- --user 40000)
expect(2 "--date takes a date" QT_QPA_PLATFORM=offscreen -- --date 21/11/2026)
expect(2 "not both" QT_QPA_PLATFORM=offscreen -- --database a --odbc b)
expect_one_line(3 "does not exist" QT_QPA_PLATFORM=offscreen -- --database "${WORK_DIR}/none.sqlite")
expect_one_line(3 "cannot open the database" QT_QPA_PLATFORM=offscreen -- --odbc "DSN=qz2-no-such-source")
# First run: the demo database is created in the user's data folder and the register drawn.
expect_quiet(0 "created the demo database" QT_QPA_PLATFORM=offscreen "XDG_DATA_HOME=${WORK_DIR}/data"
             -- --date 2026-11-21 --screenshot "${WORK_DIR}/register.png")
if(NOT EXISTS "${WORK_DIR}/register.png" OR NOT EXISTS "${WORK_DIR}/data/qz2/qz2-attendance/demo.sqlite")
  message(FATAL_ERROR "the first run left no picture or no demo database")
endif()

# Later runs open the demo database without a word, also without a display.
file(REMOVE "${WORK_DIR}/register.png")
run_host(--unset=QT_QPA_PLATFORM "XDG_DATA_HOME=${WORK_DIR}/data" -- --screenshot "${WORK_DIR}/register.png")
if(NOT rc EQUAL 0 OR NOT out STREQUAL "" OR NOT err STREQUAL "" OR NOT EXISTS "${WORK_DIR}/register.png")
  message(FATAL_ERROR "a second picture: exit ${rc}, expected 0 and no output\n${out}${err}")
endif()

# Bad options exit 2, with a display or without one.
foreach(display_env "--unset=QT_QPA_PLATFORM" "QT_QPA_PLATFORM=offscreen")
  expect_one_line(2 "Unknown option 'no-such-option'" ${display_env} -- --no-such-option)
  expect_one_line(2 "Missing value after '--database'" ${display_env} -- --database)
  expect_one_line(2 "Missing value after '--user'" ${display_env} -- --title T --user)
  expect_one_line(2 "unexpected argument 'report.txt'" ${display_env} -- report.txt)
  expect_one_line(2 "from -32768 to 32767" ${display_env} -- --company x)
endforeach()
# Qt's own options stay Qt's: -platform picks the platform and is no unknown option.
expect_one_line(2 "Unknown option 'no-such-option'" --unset=QT_QPA_PLATFORM -- -platform offscreen --no-such-option)

# Files that are not attendance databases end with one line that says what is wrong.
file(WRITE "${WORK_DIR}/empty.sqlite" "")
expect_one_line(3 "is empty" QT_QPA_PLATFORM=offscreen -- --database "${WORK_DIR}/empty.sqlite")
file(SIZE "${WORK_DIR}/empty.sqlite" empty_size)
if(NOT empty_size EQUAL 0)
  message(FATAL_ERROR "the empty file was written to")
endif()
file(WRITE "${WORK_DIR}/notes.sqlite" "Monday: 09:00 to 17:30\n")
expect_one_line(3 "is not an SQLite database" QT_QPA_PLATFORM=offscreen -- --database "${WORK_DIR}/notes.sqlite")
# An SQLite file of something else: the demo's bytes are not needed, any table will do.
find_program(SQLITE3 sqlite3)
if(SQLITE3)
  execute_process(COMMAND "${SQLITE3}" "${WORK_DIR}/other.sqlite" "create table punches(card int, at text);"
                  RESULT_VARIABLE sqlite_rc)
  if(NOT sqlite_rc EQUAL 0)
    message(FATAL_ERROR "sqlite3 could not make a test file")
  endif()
  expect_one_line(3 "has no linktable" QT_QPA_PLATFORM=offscreen -- --database "${WORK_DIR}/other.sqlite")
else()
  message(FATAL_ERROR "sqlite3 is needed (scripts/install-deps installs it)")
endif()
expect_one_line(3 "is a folder" QT_QPA_PLATFORM=offscreen -- --database "${WORK_DIR}")
# A file its reader may not read. Root reads any file whatever its mode, but not the
# kernel's write-only settings.
set(unreadable "${WORK_DIR}/locked.sqlite")
file(WRITE "${unreadable}" "SQLite format 3")
file(CHMOD "${unreadable}" PERMISSIONS OWNER_WRITE)
execute_process(COMMAND ${CMAKE_COMMAND} -E cat "${unreadable}" RESULT_VARIABLE read_rc OUTPUT_QUIET ERROR_QUIET)
if(read_rc EQUAL 0)
  set(unreadable /proc/sys/vm/drop_caches)
  execute_process(COMMAND ${CMAKE_COMMAND} -E cat "${unreadable}" RESULT_VARIABLE read_rc OUTPUT_QUIET ERROR_QUIET)
endif()
if(read_rc EQUAL 0)
  message(FATAL_ERROR "found no file that cannot be read here")
endif()
expect_one_line(3 "cannot read the database file '${unreadable}'" QT_QPA_PLATFORM=offscreen
                -- --database "${unreadable}")

# The report command, on a terminal without a display or a runtime folder: its one line and
# nothing from Qt.
run_host(--unset=QT_QPA_PLATFORM -- report muster --from 2026-10-01 --to 2026-10-31 --format csv
         --out "${WORK_DIR}/m.csv" --database "${WORK_DIR}/empty.sqlite")
if(NOT rc EQUAL 3 OR NOT out STREQUAL "" OR NOT err MATCHES "^qz2-attendance report: [^\n]*is empty[^\n]*\n$")
  message(FATAL_ERROR "qz2-attendance report: expected exit 3 and one line of its own, got ${rc}\n${out}${err}")
endif()
