int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    qk::finalize_resource_library(false);  // what the module does as it is unloaded
    return result;
}
