# What a build for Windows needs beyond the ones for other systems.

enable_language(RC)

# Programs and libraries lie side by side, where the system looks for them first.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# The C++ runtime is shared, so that a handler of failed allocations reaches the operator new of the
# program and of the library alike. Its files come along, in the build and in what is installed.
file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
set(runtime_files)
foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name} OUTPUT_VARIABLE file
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  file(REAL_PATH ${file} file)
  if(NOT EXISTS ${file})
    message(FATAL_ERROR "${name} of ${CMAKE_CXX_COMPILER} is not found")
  endif()
  file(COPY_FILE ${file} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name} ONLY_IF_DIFFERENT)
  list(APPEND runtime_files ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name})
endforeach()
install(FILES ${runtime_files} DESTINATION ${CMAKE_INSTALL_BINDIR})

# Header-only libraries of the building machine, whose other headers must stay out of sight.
# quillaven_host_headers(TARGET FOLDER): an interface target that sees that folder of /usr/include alone.
function(quillaven_host_headers target folder)
  if(NOT EXISTS /usr/include/${folder})
    message(FATAL_ERROR "/usr/include/${folder} is missing")
  endif()
  set(place ${CMAKE_BINARY_DIR}/host_headers/${folder})
  file(MAKE_DIRECTORY ${place})
  file(CREATE_LINK /usr/include/${folder} ${place}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${place})
endfunction()
