# What nearly every file reads, read once: it halves the time of a build from nothing. The debug preset does
# without, so a file that leaves out an include it needs is found there.

# Every target of the folder and below it that is built with our options.
function(sayvane_precompile folder)
    get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target IN LISTS targets)
        get_target_property(type ${target} TYPE)
        get_target_property(links ${target} LINK_LIBRARIES)
        if(type MATCHES "^(STATIC_LIBRARY|EXECUTABLE)$" AND "sayvane::options" IN_LIST links)
            target_precompile_headers(${target} REUSE_FROM precompiled)
        endif()
    endforeach()
    get_property(folders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
    foreach(each IN LISTS folders)
        sayvane_precompile(${each})
    endforeach()
endfunction()

file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/precompiled.cpp CONTENT "")
add_library(precompiled OBJECT ${PROJECT_BINARY_DIR}/precompiled.cpp)
set_target_properties(precompiled PROPERTIES AUTOMOC OFF)
# Who reads them must define all that they were compiled with: of the libraries here Core alone is linked.
# What a compiler cache needs to know a file by what it reads.
target_compile_options(sayvane_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
target_link_libraries(precompiled PRIVATE Qt6::Core sayvane::options)
foreach(library DBus Gui Network Qml QmlIntegration)
    target_include_directories(precompiled SYSTEM PRIVATE $<TARGET_PROPERTY:Qt6::${library},INTERFACE_INCLUDE_DIRECTORIES>)
endforeach()
target_include_directories(precompiled SYSTEM PRIVATE
    $<TARGET_PROPERTY:QCoro6::Core,INTERFACE_INCLUDE_DIRECTORIES> $<TARGET_PROPERTY:QCoro6::Coro,INTERFACE_INCLUDE_DIRECTORIES>)
set(headers
    algorithm array chrono cmath cstdint expected filesystem functional map memory mutex optional ranges span string
    utility vector
    QDBusArgument QDBusConnection QDBusMessage QDateTime QDir QFile QFileInfo QHash QJsonArray QJsonDocument
    QJsonObject QList QLocale QLoggingCategory QObject QPainter QProcess QRegularExpression QString QStringList
    QTimeZone QTimer QUrl QVariantMap QtQml/qqmlprivate.h
    QCoroTask)
list(TRANSFORM headers REPLACE "(.+)" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>")
target_precompile_headers(precompiled PRIVATE ${headers})
sayvane_precompile(${PROJECT_SOURCE_DIR}/src)
if(SAYVANE_TESTS)
    sayvane_precompile(${PROJECT_SOURCE_DIR}/tests)
endif()
