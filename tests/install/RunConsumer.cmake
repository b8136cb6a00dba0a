# Installs the project into a scratch prefix, then uses it as a host would:
# builds a program against it with find_package (one translation unit includes
# every installed header), runs that program, and runs the installed sample
# generator and viewer from the prefix's bin folder.
file(REMOVE_RECURSE ${PREFIX} ${CONSUMER_BUILD})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX} RESULT_VARIABLE status OUTPUT_QUIET)
if(status)
  message(FATAL_ERROR "install failed: ${status}")
endif()

# every installed header must compile on its own include path
file(GLOB_RECURSE headers RELATIVE ${PREFIX}/include/KXVtkLib ${PREFIX}/include/KXVtkLib/*.hpp)
list(SORT headers)
set(all "// generated: every installed header of the library\n")
foreach(header ${headers})
  string(APPEND all "#include <${header}>\n")
endforeach()
file(MAKE_DIRECTORY ${CONSUMER_BUILD})
file(WRITE ${CONSUMER_BUILD}/AllHeaders.cpp "${all}")

execute_process(COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${CONSUMER_BUILD} -G ${GENERATOR}
  -DCMAKE_PREFIX_PATH=${PREFIX} -DALL_HEADERS=${CONSUMER_BUILD}/AllHeaders.cpp RESULT_VARIABLE status)
if(status)
  message(FATAL_ERROR "configuring the consumer failed: ${status}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${CONSUMER_BUILD} RESULT_VARIABLE status)
if(status)
  message(FATAL_ERROR "building the consumer failed: ${status}")
endif()
execute_process(COMMAND ${CONSUMER_BUILD}/consumer RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
message("${out}${err}")
if(status)
  message(FATAL_ERROR "the consumer failed: ${status}")
endif()

# the installed programs find their libraries through their run path alone
execute_process(COMMAND ${PREFIX}/bin/kxvtk-sample ${CONSUMER_BUILD}/sample.voxelia --size 16
  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(status)
  message(FATAL_ERROR "the installed sample generator failed (${status}): ${out}${err}")
endif()
execute_process(COMMAND ${PREFIX}/bin/kxvtk-viewer --screenshot ${CONSUMER_BUILD}/sample.png --size 160x120
  ${CONSUMER_BUILD}/sample.voxelia
  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 120)
if(status OR NOT EXISTS ${CONSUMER_BUILD}/sample.png)
  message(FATAL_ERROR "the installed viewer failed (${status}): ${out}${err}")
endif()
message("installed viewer wrote sample.png")
