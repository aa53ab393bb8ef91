# Quorvane.app, with Qt copied in and signed by `cmake --install`, and its disk image.

set(QUORVANE_SIGNING_IDENTITY "-" CACHE STRING "What codesign signs with; - signs for this Mac only")
find_program(QUORVANE_MACDEPLOYQT macdeployqt REQUIRED)
find_program(QUORVANE_RSVG_CONVERT rsvg-convert REQUIRED)

set(resources ${PROJECT_SOURCE_DIR}/resources)
set(bundled
    ${resources}/creaking.mp3
    ${resources}/fanmac.mp3
    ${resources}/keyboard.mp3
    ${resources}/logo.png
    ${resources}/tractor.mp3)

# The icon in each size of an icon set, at scale 1 and 2.
set(icon ${CMAKE_CURRENT_BINARY_DIR}/Quorvane.icns)
set(iconset ${CMAKE_CURRENT_BINARY_DIR}/Quorvane.iconset)
set(drawings COMMAND ${CMAKE_COMMAND} -E make_directory ${iconset})
foreach(size 16 32 128 256 512)
    math(EXPR double "2 * ${size}")
    foreach(name IN ITEMS "${size}x${size}:${size}" "${size}x${size}@2x:${double}")
        string(REPLACE ":" ";" name_and_pixels "${name}")
        list(GET name_and_pixels 0 file)
        list(GET name_and_pixels 1 pixels)
        list(APPEND drawings COMMAND ${QUORVANE_RSVG_CONVERT} --width ${pixels} --height ${pixels}
            --output ${iconset}/icon_${file}.png ${resources}/icon.svg)
    endforeach()
endforeach()
add_custom_command(OUTPUT ${icon} ${drawings}
    COMMAND iconutil --convert icns --output ${icon} ${iconset}
    DEPENDS ${resources}/icon.svg COMMENT "Drawing the icon" VERBATIM)

target_sources(quorvane PRIVATE ${bundled} ${icon})
set_source_files_properties(${bundled} ${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_target_properties(quorvane PROPERTIES
    OUTPUT_NAME Quorvane
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${resources}/macos/Info.plist.in
    MACOSX_BUNDLE_BUNDLE_NAME Quorvane
    MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
    MACOSX_BUNDLE_GUI_IDENTIFIER org.quorvane.Quorvane
    MACOSX_BUNDLE_ICON_FILE Quorvane.icns
    MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION})

# Notarisation requires a signing identity known to Apple and a secure timestamp.
if(QUORVANE_SIGNING_IDENTITY STREQUAL "-")
    set(deploy_option -codesign=-)
    set(timestamp --timestamp=none)
else()
    set(deploy_option "-sign-for-notarization=${QUORVANE_SIGNING_IDENTITY}")
    set(timestamp --timestamp)
endif()

install(TARGETS quorvane BUNDLE DESTINATION .)
# Copies Qt into the bundle and signs everything with one identity: the hardened runtime does not
# load libraries that are signed with another.
install(CODE "
    set(bundle \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Quorvane.app\")
    execute_process(COMMAND_ERROR_IS_FATAL ANY
        COMMAND \"${QUORVANE_MACDEPLOYQT}\" \"\${bundle}\"
            \"-qmldir=${CMAKE_CURRENT_SOURCE_DIR}/screens\"
            \"${deploy_option}\")
    execute_process(COMMAND_ERROR_IS_FATAL ANY
        COMMAND codesign --force --options runtime ${timestamp}
            --entitlements \"${resources}/macos/Quorvane.entitlements\"
            --sign \"${QUORVANE_SIGNING_IDENTITY}\" \"\${bundle}\")")

set(CPACK_GENERATOR DragNDrop)
set(CPACK_PACKAGE_NAME Quorvane)
set(CPACK_PACKAGE_FILE_NAME Quorvane-${PROJECT_VERSION})
set(CPACK_DMG_VOLUME_NAME Quorvane)
include(CPack)
