# Translations: resources/i18n/<catalogue>_<language>.ts become resources ":/i18n/....qm" of a
# target. To add a language, name it here, build the target update_translations, and translate the
# new .ts files (Qt Linguist, or any editor). The sources are English, so English has only the texts
# with plural forms: it is updated where resources/i18n/<catalogue>_en.ts exists.
set(JOINERY_LANGUAGES de)

# joinery_add_translations(<target> <catalogue> <file or folder>...)
#
# Compiles the catalogue into the target, and lets update_translations collect its texts from the
# given files, or from the C++ files below the given folders.
function(joinery_add_translations target catalogue)
    string(MAKE_C_IDENTIFIER ${catalogue} name)
    set(folder ${CMAKE_BINARY_DIR}/i18n)
    set(qm_files "")
    set(ts_files "")
    set(entries "")
    foreach(language ${JOINERY_LANGUAGES} en)
        set(stem ${catalogue}_${language})
        set(ts ${CMAKE_SOURCE_DIR}/resources/i18n/${stem}.ts)
        if(NOT language STREQUAL en)
            list(APPEND ts_files ${ts})
        endif()
        if(EXISTS ${ts})
            add_custom_command(OUTPUT ${folder}/${stem}.qm DEPENDS ${ts}
                COMMAND Qt5::lrelease -silent -nounfinished ${ts} -qm ${folder}/${stem}.qm)
            list(APPEND qm_files ${folder}/${stem}.qm)
            string(APPEND entries "<file>${stem}.qm</file>")
        endif()
    endforeach()

    file(CONFIGURE OUTPUT ${folder}/${catalogue}.qrc CONTENT
         "<RCC><qresource prefix=\"/i18n\">@entries@</qresource></RCC>\n" @ONLY)
    add_custom_command(OUTPUT ${folder}/qrc_${name}.cpp DEPENDS ${folder}/${catalogue}.qrc ${qm_files}
        COMMAND Qt5::rcc --name ${name}_i18n -o ${folder}/qrc_${name}.cpp
                ${folder}/${catalogue}.qrc)
    target_sources(${target} PRIVATE ${folder}/qrc_${name}.cpp)
    set_source_files_properties(${folder}/qrc_${name}.cpp PROPERTIES
        SKIP_AUTOGEN ON SKIP_PRECOMPILE_HEADERS ON
        COMPILE_OPTIONS "-Wno-conversion;-Wno-sign-conversion")

    set(english ${CMAKE_SOURCE_DIR}/resources/i18n/${catalogue}_en.ts)
    set(update_english "")
    if(EXISTS ${english})
        set(update_english COMMAND Qt5::lupdate -silent -locations none -no-obsolete -pluralonly
            -I . -extensions h,cpp,inc,ui ${ARGN} -ts ${english})
    endif()
    add_custom_target(update_${name}_translations ${update_english}
        COMMAND Qt5::lupdate -silent -locations none -no-obsolete -I . -extensions h,cpp,inc,ui ${ARGN}
                -ts ${ts_files}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} COMMENT "Collecting the texts of ${catalogue}")
    if(NOT TARGET update_translations)
        add_custom_target(update_translations)
    endif()
    add_dependencies(update_translations update_${name}_translations)
    string(REPLACE ";" "," sources "${ARGN}")
    set_property(GLOBAL APPEND PROPERTY JOINERY_CATALOGUES "${catalogue}=${sources}")
endfunction()
