# Photo core transform and TIFF rows: PackBits beside libtiff's own codec.
find_package(TIFF REQUIRED)
target_link_libraries(hdtiff_bench PRIVATE TIFF::TIFF)
