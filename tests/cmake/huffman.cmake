# Huffman family: interoperability with libjpeg-turbo through the marker
# reader/writer of tests/jpegio.
include(${CMAKE_CURRENT_LIST_DIR}/../jpegio/jpegio.cmake)
target_link_libraries(huffman_interop_test PRIVATE zvp_jpegio)
