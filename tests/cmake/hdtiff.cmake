# TIFF row coding: interoperability with libtiff (PackBits strips both ways).
find_package(TIFF REQUIRED)
target_link_libraries(tiffinterop_test PRIVATE TIFF::TIFF)
