# Huffman family benchmark: our whole-scan entropy coding beside libjpeg-turbo,
# through the marker reader/writer of tests/jpegio.
include(${CMAKE_SOURCE_DIR}/tests/jpegio/jpegio.cmake)
target_link_libraries(huffman_bench PRIVATE zvp_jpegio)
