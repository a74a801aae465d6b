# The libraries that the project stands on; all are Debian packages for amd64 and armhf.
find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(EXPAT REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS program_options filesystem)
find_package(PkgConfig REQUIRED)
pkg_check_modules(Safec REQUIRED IMPORTED_TARGET libsafec)
pkg_check_modules(Nettle REQUIRED IMPORTED_TARGET nettle)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
# For the tests, and for the test kit of the SDK.
find_package(GTest REQUIRED)
