# Installs the build into a fresh prefix, moves it, and makes and runs the hosts against it:
# through find_package, and through pkg-config.
#   BUILD   the build folder     SOURCE  this folder     WORK  a scratch folder

function(must)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
must(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/staged)
file(RENAME ${WORK}/staged ${WORK}/prefix)

must(${CMAKE_COMMAND} -S ${SOURCE}/host -B ${WORK}/host -DCMAKE_PREFIX_PATH=${WORK}/prefix)
must(${CMAKE_COMMAND} --build ${WORK}/host)
must(${WORK}/host/host_c)
must(${WORK}/host/host_cpp)

file(GLOB_RECURSE pc ${WORK}/prefix/vxkernel.pc)
get_filename_component(pc_folder ${pc} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_folder})
must(pkg-config --cflags --libs vxkernel)
separate_arguments(flags UNIX_COMMAND "${output}")
get_filename_component(lib_folder ${pc_folder} DIRECTORY)
must(cc ${SOURCE}/host/host.c -o ${WORK}/host_pc ${flags} -Wl,-rpath,${lib_folder})
must(${WORK}/host_pc)
