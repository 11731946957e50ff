# MD5 digests of file signatures come from libcrypto.
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
target_link_libraries(BrindleBaseCore PRIVATE OpenSSL::Crypto)
