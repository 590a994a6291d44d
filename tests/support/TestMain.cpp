#include <cstdlib>

#include <gmock/gmock.h>

// The library reads the environment's locale; every test starts from the same one, wherever it
// runs.
int main(int argc, char **argv) {
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("LOCPATH");
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
