# Makes locales for the tests in ${locale_folder}: nothing is installed into the system.
# Each row: name of the locale, its source, its character map.
set(locales
    "de_DE.ISO-8859-1|de_DE|ISO-8859-1"
    "de_DE.UTF-8|de_DE|UTF-8"
    "ja_JP.EUC-JP|ja_JP|EUC-JP"
    "tr_TR.UTF-8|tr_TR|UTF-8")
find_program(SCALER_ISP_LOCALEDEF localedef)
if(SCALER_ISP_LOCALEDEF AND EXISTS /usr/share/i18n/charmaps)
    file(MAKE_DIRECTORY ${locale_folder})
    set(made "")
    foreach(row IN LISTS locales)
        string(REPLACE "|" ";" row "${row}")
        list(GET row 0 name)
        list(GET row 1 source)
        list(GET row 2 charmap)
        add_custom_command(OUTPUT ${locale_folder}/${name}/LC_CTYPE
            COMMAND ${SCALER_ISP_LOCALEDEF} --no-archive --quiet -i ${source} -f ${charmap}
                    ${locale_folder}/${name}
            COMMENT "Making the locale ${name}" VERBATIM)
        list(APPEND made ${locale_folder}/${name}/LC_CTYPE)
    endforeach()
    add_custom_target(scaler_isp_test_locales ALL DEPENDS ${made})
elseif(SCALER_ISP_TESTS STREQUAL "ON")
    message(FATAL_ERROR "tests: localedef or its character maps are missing (package locales)")
else()
    scaler_isp_note("tests: without other locales (package locales), tests that need one are skipped")
endif()

