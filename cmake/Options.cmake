# What every target of the project is compiled with; link it privately.
add_library(sayvane_options INTERFACE)
add_library(sayvane::options ALIAS sayvane_options)
target_compile_options(sayvane_options INTERFACE
    -pthread -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
    -Wimplicit-fallthrough -Wno-missing-field-initializers -Werror)
target_compile_definitions(sayvane_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(SAYVANE_SANITIZE)
    target_compile_options(sayvane_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(sayvane_options INTERFACE -fsanitize=address,undefined)
endif()
if(SAYVANE_FUZZ)
    target_compile_options(sayvane_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # clang reports what GCC's own headers deprecate once a template of ours instantiates it.
    target_compile_options(sayvane_options INTERFACE -Wno-deprecated-declarations)
endif()
