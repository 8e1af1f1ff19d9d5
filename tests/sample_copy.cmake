# A copy of the sample installation works on its own data: with its first
# client's database deleted, a run of the copy ends with exit code 2 and a
# line on standard error saying why, creates no new database, and leaves the
# original's database alone. An intact copy counts its own articles.
set(copy "${BIN}/sample-copy")
file(REMOVE_RECURSE "${copy}")
file(COPY "${SAMPLE}/" DESTINATION "${copy}")
file(REMOVE "${copy}/Daten/M1/Sample.db")
file(SIZE "${SAMPLE}/Daten/M1/Sample.db" before)
execute_process(COMMAND "${copy}/Sample" WORKING_DIRECTORY "${copy}" INPUT_FILE /dev/null
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 2 OR NOT err MATCHES "Sample: exit code 2: no client could be connected\n")
  message(FATAL_ERROR "a run without its database: exit ${rc}\n${out}\n${err}")
endif()
if(EXISTS "${copy}/Daten/M1/Sample.db")
  message(FATAL_ERROR "the run created a database")
endif()
file(SIZE "${SAMPLE}/Daten/M1/Sample.db" after)
if(NOT before EQUAL after)
  message(FATAL_ERROR "the original's database changed")
endif()
# The set-up makes the missing one again and says so; then the copy runs.
execute_process(COMMAND "${copy}/Sample" --setup WORKING_DIRECTORY "${copy}" RESULT_VARIABLE rc OUTPUT_VARIABLE out)
if(NOT rc EQUAL 0 OR NOT out MATCHES "sample-copy/Daten/M1/Sample.db mit 3 Artikeln angelegt")
  message(FATAL_ERROR "set-up of the copy: exit ${rc}\n${out}")
endif()
execute_process(COMMAND "${copy}/Sample" WORKING_DIRECTORY "${copy}" INPUT_FILE /dev/null
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0 OR NOT out MATCHES "Mandant: Beispiel GmbH \\(Daten.M1\\), 3 Artikel")
  message(FATAL_ERROR "the copy's run: exit ${rc}\n${out}\n${err}")
endif()
file(REMOVE_RECURSE "${copy}")
message(STATUS "a copied installation works on its own data")
