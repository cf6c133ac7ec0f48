# The marker reader/writer of tests and benchmarks, with libjpeg-turbo for
# the helpers in ljt.h. Included by tests/cmake and bench/cmake.
if(NOT TARGET zvp_jpegio)
  find_package(JPEG REQUIRED)
  add_library(zvp_jpegio STATIC ${CMAKE_CURRENT_LIST_DIR}/jpegio.cpp)
  target_include_directories(zvp_jpegio PUBLIC ${CMAKE_CURRENT_LIST_DIR}/.. ${CMAKE_SOURCE_DIR}/include)
  target_link_libraries(zvp_jpegio PUBLIC JPEG::JPEG)
endif()
