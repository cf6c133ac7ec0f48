# Texture benchmark: stb_dxt (header only, Debian libstb-dev) and squish
# (Debian libsquish-dev) beside the library's encoders. Debian's libsquish.pc
# has an empty prefix, so the library is found directly.
find_library(ZVP_SQUISH_LIB squish REQUIRED)
find_path(ZVP_SQUISH_INCLUDE squish.h REQUIRED)
find_path(ZVP_STB_INCLUDE stb/stb_dxt.h REQUIRED)
target_include_directories(texture_bench PRIVATE ${ZVP_SQUISH_INCLUDE} ${ZVP_STB_INCLUDE})
target_link_libraries(texture_bench PRIVATE ${ZVP_SQUISH_LIB})
