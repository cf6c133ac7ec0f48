# Colour conversion and chroma sampling: libyuv beside our members.
find_library(YUV_LIB yuv)
find_path(YUV_INCLUDE libyuv.h)
if(YUV_LIB AND YUV_INCLUDE AND TARGET colour_bench)
  target_include_directories(colour_bench PRIVATE ${YUV_INCLUDE})
  target_link_libraries(colour_bench PRIVATE ${YUV_LIB})
  target_compile_definitions(colour_bench PRIVATE ZVP_HAVE_LIBYUV=1)
endif()
