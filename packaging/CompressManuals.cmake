# Run by CPack over what goes into the packages.
file(GLOB_RECURSE pages ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.1)
list(FILTER pages INCLUDE REGEX "/man/man1/")
foreach(page IN LISTS pages)
    execute_process(COMMAND gzip -9n ${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
