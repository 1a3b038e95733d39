# What Debian's own packages are built with.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
if(NOT WIN32 AND NOT RECORD_CONVERTER_SANITIZE)
    add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-Wformat;-Werror=format-security>")
    add_compile_definitions($<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
    add_link_options(LINKER:-z,relro,-z,now)
endif()
