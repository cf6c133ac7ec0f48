# The thread count follows OMP_NUM_THREADS when the application sets none.
add_test(NAME CoreEnv.HonoursOmpNumThreads.env3 COMMAND frame_test --gtest_filter=CoreEnv.*)
set_tests_properties(CoreEnv.HonoursOmpNumThreads.env3 PROPERTIES ENVIRONMENT "OMP_NUM_THREADS=3")
target_link_libraries(frame_test PRIVATE OpenMP::OpenMP_CXX)
target_link_libraries(parallel_itest PRIVATE OpenMP::OpenMP_CXX)
