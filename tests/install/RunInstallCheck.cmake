# The installed package, as a deployer meets it. Run with cmake -P and:
#   BUILD_DIR, SOURCE_DIR (tests/install), EXAMPLE_DIR (examples/component),
#   WORK_DIR, CXX_FLAGS (the flags the libraries were built with),
#   BROKEN, UNRESOLVED, FOREIGN (libraries the tool must refuse).
# 1. Installs the build tree into a scratch prefix; the installed tool and
#    example host run without LD_LIBRARY_PATH.
# 2. Copies the example component out of the tree and builds it against the
#    package, then builds the consumer and a host of the example.
# 3. The deployer's story: register refuses broken libraries, inspect and
#    register --all take the example, the host runs, "not registered" names
#    the folder and the cause in each situation, check finds each broken
#    entry, and QUARN_CLASSES_PATH is honoured.
unset(ENV{LD_LIBRARY_PATH})
unset(ENV{QUARN_CLASSES_PATH})
unset(ENV{QUARN_TRACE_CLASSES})
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})

# step(NAME STATUS n COMMAND ... [OUT text...] [ERR text...]): runs COMMAND,
# expects exit status n and each text somewhere in stdout / stderr.
function(step name)
  cmake_parse_arguments(PARSE_ARGV 1 S "" "STATUS" "COMMAND;OUT;ERR")
  execute_process(COMMAND ${S_COMMAND} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  set(report "${name}: ${S_COMMAND}\n--- stdout:\n${out}\n--- stderr:\n${err}")
  if(NOT rc STREQUAL S_STATUS)
    message(FATAL_ERROR "exit status ${rc}, expected ${S_STATUS}\n${report}")
  endif()
  foreach(stream OUT ERR)
    string(TOLOWER ${stream} variable)
    foreach(text IN LISTS S_${stream})
      string(FIND "${${variable}}" "${text}" at)
      if(at EQUAL -1)
        message(FATAL_ERROR "missing from ${variable}: ${text}\n${report}")
      endif()
    endforeach()
  endforeach()
  message(STATUS "ok: ${name}")
endfunction()

# 1. Install.
step("install" STATUS 0 COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
file(GLOB libquarn ${prefix}/lib*/libquarn.so.*.*.*)
get_filename_component(libdir ${libquarn} DIRECTORY)
set(classes ${libdir}/classes)
set(quarn ${prefix}/bin/quarn)
step("the installed tool runs" STATUS 0 COMMAND ${quarn} --version OUT "(libquarn ${libdir}/libquarn.so")
if(EXISTS ${prefix}/bin/quarn_example_host)
  step("the installed example host runs" STATUS 0 COMMAND ${prefix}/bin/quarn_example_host
       OUT "says: Hello, quarn!" "unregistered 3 classes")
endif()

# 2. Build a copy of the example, the consumer and the host.
file(COPY ${EXAMPLE_DIR}/ DESTINATION ${WORK_DIR}/example)
step("configure the copied example" STATUS 0
     COMMAND ${CMAKE_COMMAND} -S ${WORK_DIR}/example -B ${WORK_DIR}/example-build
             -DCMAKE_PREFIX_PATH=${prefix} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
step("build the copied example" STATUS 0 COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/example-build)
set(example ${WORK_DIR}/example-build/libquarnExample.so)
# A component whose interface lost its QUARN_DEFINE_INTERFACE must fail to
# link (-z defs), not load and fail in the first host. Sanitizer builds leave
# -z defs out, so only the plain build checks it.
if(NOT CXX_FLAGS MATCHES "-fsanitize")
  file(COPY ${EXAMPLE_DIR}/ DESTINATION ${WORK_DIR}/undefined)
  file(READ ${WORK_DIR}/undefined/Interfaces.cpp source)
  string(REPLACE "QUARN_DEFINE_INTERFACE(iSampler);" "" source "${source}")
  file(WRITE ${WORK_DIR}/undefined/Interfaces.cpp "${source}")
  step("configure a component with an undefined interface" STATUS 0
       COMMAND ${CMAKE_COMMAND} -S ${WORK_DIR}/undefined -B ${WORK_DIR}/undefined-build
               -DCMAKE_PREFIX_PATH=${prefix} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/undefined-build RESULT_VARIABLE rc
                  OUTPUT_VARIABLE out ERROR_VARIABLE err)
  string(FIND "${out}${err}" "undefined reference to `example::iSampler::Tag'" at)
  if(rc EQUAL 0 OR at EQUAL -1)
    message(FATAL_ERROR "a component without QUARN_DEFINE_INTERFACE(iSampler) linked (status ${rc}):\n${out}\n${err}")
  endif()
  message(STATUS "ok: a component with an undefined interface fails to link")
endif()
step("configure the consumer" STATUS 0
     COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -DCMAKE_PREFIX_PATH=${prefix}
             "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" -DEXAMPLE_SOURCE=${WORK_DIR}/example
             -DEXAMPLE_BUILD=${WORK_DIR}/example-build)
step("build the consumer" STATUS 0 COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
step("run the consumer" STATUS 0 COMMAND ${WORK_DIR}/build/consumer)
set(host ${WORK_DIR}/build/deployed_host)

# 3. The deployer's story.
set(text ${WORK_DIR}/example/CMakeLists.txt)
step("register refuses a folder" STATUS 1 COMMAND ${quarn} register Marlix.example.Greeter ${WORK_DIR}
     ERR "it is a directory, not a shared object")
step("register refuses a text file" STATUS 1 COMMAND ${quarn} register Marlix.example.Greeter ${text}
     ERR "${text}: it is not a shared object (no ELF header)")
step("register refuses a library without DllCreateInstance" STATUS 1
     COMMAND ${quarn} register Marlix.example.Greeter ${BROKEN} ERR "it exports no DllCreateInstance")
step("register refuses a library with an unresolved symbol" STATUS 1
     COMMAND ${quarn} register Marlix.example.Greeter ${UNRESOLVED}
     ERR "it does not load: undefined symbol: acme::iScaler::Tag")
step("register refuses a library built for another libquarn" STATUS 1
     COMMAND ${quarn} register Marlix.example.Greeter ${FOREIGN} ERR "it was built for libquarn")
step("register refuses a library that does not serve the class" STATUS 1
     COMMAND ${quarn} register Marlix.example.Nobody ${example}
     ERR "does not serve it (DllCreateInstance returned null)" "it serves: Marlix.example.Greeter, Marlix.example.Counter")
file(GLOB written ${classes}/*.xml)
if(written)
  message(FATAL_ERROR "refused registrations left files: ${written}")
endif()

step("inspect the example" STATUS 0 COMMAND ${quarn} inspect ${example}
     OUT "serving 3 classes" "Marlix.example.Greeter\tSays hello to whoever it is given"
         "Marlix.example.Counter\tCounts, one instance at a time")
step("register --all" STATUS 0 COMMAND ${quarn} register ${example} --all
     OUT "Registered Marlix.example.Greeter (${example}) in ${classes}/Marlix.example.Greeter.xml"
         "Registered Marlix.example.Counter (${example}) in ${classes}/Marlix.example.Counter.xml")
step("classes shows descriptions" STATUS 0 COMMAND ${quarn} classes
     OUT "Marlix.example.Greeter\t${example}\tSays hello to whoever it is given")
step("the host runs the registered example" STATUS 0 COMMAND ${host} Marlix.example.Greeter OUT "Hello, deployer!")

step("not registered: no registration file" STATUS 1 COMMAND ${host} Marlix.example.Nobody
     ERR "Class Marlix.example.Nobody not registered.\nNo registration file Marlix.example.Nobody.xml in ${classes} (the folder beside ${libdir}/libquarn.so")
step("register --no-check writes what the library does not serve" STATUS 0
     COMMAND ${quarn} register Marlix.example.Missing ${example} --no-check)
step("not registered: the library makes nothing" STATUS 1 COMMAND ${host} Marlix.example.Missing
     ERR "Class Marlix.example.Missing not registered.\nRegistration file ${classes}/Marlix.example.Missing.xml names library ${example}, which made no object of this class.\nThe library serves: Marlix.example.Greeter, Marlix.example.Counter, Marlix.example.Sampler.")
# Another copy of libquarn (with its tool) keeps its registrations beside itself.
file(MAKE_DIRECTORY ${WORK_DIR}/other/bin ${WORK_DIR}/other/lib)
file(GLOB libraries ${libdir}/libquarn*.so*)
file(COPY ${quarn} DESTINATION ${WORK_DIR}/other/bin)
file(COPY ${libraries} DESTINATION ${WORK_DIR}/other/lib)
step("unregister" STATUS 0 COMMAND ${quarn} unregister Marlix.example.Counter)
step("register with another copy of the tool" STATUS 0
     COMMAND ${WORK_DIR}/other/bin/quarn register Marlix.example.Counter ${example}
     OUT "in ${WORK_DIR}/other/lib/classes/Marlix.example.Counter.xml")
step("not registered: the file is beside another libquarn" STATUS 1 COMMAND ${host} Marlix.example.Counter
     ERR "No registration file Marlix.example.Counter.xml in ${classes} (the folder beside ${libdir}/libquarn.so")
step("which says the same" STATUS 1 COMMAND ${quarn} which Marlix.example.Counter
     ERR "quarn which: Marlix.example.Counter is not registered: No registration file Marlix.example.Counter.xml in ${classes}")

file(WRITE ${classes}/Marlix.example.Unreadable.xml "<mxq:class>")
file(WRITE ${classes}/Marlix.example.Gone.xml
     "<mxq:class><mxq:progid>Marlix.example.Gone</mxq:progid><mxq:server>${WORK_DIR}/libgone.so</mxq:server></mxq:class>")
file(WRITE ${classes}/Marlix.example.Nameless.xml "<mxq:class><mxq:server>${example}</mxq:server></mxq:class>")
step("check finds each broken entry" STATUS 1 COMMAND ${quarn} check
     OUT "${classes}/Marlix.example.Gone.xml: its library ${WORK_DIR}/libgone.so does not exist"
         "${classes}/Marlix.example.Missing.xml: its library ${example} no longer serves Marlix.example.Missing"
         "${classes}/Marlix.example.Nameless.xml: it names no class"
         "${classes}/Marlix.example.Unreadable.xml: Registration file ${classes}/Marlix.example.Unreadable.xml of class Marlix.example.Unreadable is not valid XML"
         "Checked 6 registration files in ${classes}: 4 problems.")
step("classes marks them" STATUS 1 COMMAND ${quarn} classes
     OUT "Marlix.example.Gone\t${WORK_DIR}/libgone.so\tBROKEN: the library does not exist"
         "Marlix.example.Unreadable\t-\tBROKEN: Registration file")

# QUARN_CLASSES_PATH: registrations kept elsewhere, without write access beside libquarn.
set(ENV{QUARN_CLASSES_PATH} ${WORK_DIR}/mine)
step("register --all into QUARN_CLASSES_PATH" STATUS 0 COMMAND ${quarn} register ${example} --all
     OUT "in ${WORK_DIR}/mine/Marlix.example.Counter.xml")
step("the host finds the class through QUARN_CLASSES_PATH" STATUS 0 COMMAND ${host} Marlix.example.Counter
     OUT "made Marlix.example.Counter")
step("check the folder of QUARN_CLASSES_PATH" STATUS 0 COMMAND ${quarn} check
     OUT "Checked 3 registration files in ${WORK_DIR}/mine: no problems.")
step("not registered names QUARN_CLASSES_PATH" STATUS 1 COMMAND ${host} Marlix.example.Nobody
     ERR "No registration file Marlix.example.Nobody.xml in ${WORK_DIR}/mine (QUARN_CLASSES_PATH=${WORK_DIR}/mine).")
