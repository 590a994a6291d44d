# Finds the crypto part of mbed TLS 2.28: MbedCrypto::MbedCrypto. A toolchain that has no library of it names
# its sources in MBEDCRYPTO_SOURCE; they are then compiled with the project, only what ECDSA on P-256 needs.
include(FindPackageHandleStandardArgs)

if(MBEDCRYPTO_SOURCE)
    set(MBEDCRYPTO_LIBRARY mbedcrypto_parts)
    set(MBEDCRYPTO_INCLUDE "${MBEDCRYPTO_SOURCE}/include")
else()
    find_library(MBEDCRYPTO_LIBRARY mbedcrypto)
    find_path(MBEDCRYPTO_INCLUDE mbedtls/pk.h)
endif()
if(MBEDCRYPTO_INCLUDE)
    file(STRINGS "${MBEDCRYPTO_INCLUDE}/mbedtls/version.h" version_line
        REGEX "#define MBEDTLS_VERSION_STRING ")
    string(REGEX MATCH "[0-9.]+" MbedCrypto_VERSION "${version_line}")
endif()
# The interface of version 3 differs.
if(NOT MbedCrypto_VERSION MATCHES "^2\\.28\\.")
    set(MBEDCRYPTO_LIBRARY MBEDCRYPTO_LIBRARY-NOTFOUND)
endif()
find_package_handle_standard_args(MbedCrypto REQUIRED_VARS MBEDCRYPTO_LIBRARY MBEDCRYPTO_INCLUDE
    VERSION_VAR MbedCrypto_VERSION)

if(MbedCrypto_FOUND AND NOT TARGET MbedCrypto::MbedCrypto)
    add_library(MbedCrypto::MbedCrypto INTERFACE IMPORTED)
    target_include_directories(MbedCrypto::MbedCrypto SYSTEM INTERFACE "${MBEDCRYPTO_INCLUDE}")
    target_link_libraries(MbedCrypto::MbedCrypto INTERFACE ${MBEDCRYPTO_LIBRARY})
endif()
if(MbedCrypto_FOUND AND MBEDCRYPTO_SOURCE AND NOT TARGET mbedcrypto_parts)
    enable_language(C)
    set(parts asn1parse asn1write base64 bignum constant_time ecdsa ecp ecp_curves hmac_drbg md oid pem pk
        pk_wrap pkparse platform_util sha256)
    list(TRANSFORM parts PREPEND "${MBEDCRYPTO_SOURCE}/library/")
    list(TRANSFORM parts APPEND .c)
    add_library(mbedcrypto_parts STATIC EXCLUDE_FROM_ALL ${parts})
    target_include_directories(mbedcrypto_parts SYSTEM PUBLIC "${MBEDCRYPTO_SOURCE}/include")
    target_compile_definitions(mbedcrypto_parts PUBLIC
        MBEDTLS_CONFIG_FILE="${CMAKE_CURRENT_LIST_DIR}/mbedcrypto_config.h")
    # Its own warnings are not ours; checked sizes on macOS would only be more imports.
    target_compile_options(mbedcrypto_parts PRIVATE -w -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=0)
    if(COMMAND scaler_isp_hardening)
        scaler_isp_hardening(mbedcrypto_parts)
    endif()
    set_target_properties(mbedcrypto_parts PROPERTIES
        POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden)
endif()
