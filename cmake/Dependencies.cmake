# Everything that the build needs on the machine. All of it is looked up before an error stops the
# configuration, so that one run names all that is missing.

set(missing "")

# want_pkg_config(NAME MODULE...) makes the target PkgConfig::NAME of pkg-config's modules.
macro(want_pkg_config name)
    foreach(module ${ARGN})
        pkg_check_modules(MODULE_${module} QUIET ${module})
        if(NOT MODULE_${module}_FOUND)
            list(APPEND missing ${module})
        endif()
    endforeach()
    pkg_check_modules(${name} QUIET IMPORTED_TARGET ${ARGN})
endmacro()

# want_package(NAME TARGET) is find_package(NAME) for a package that has to define TARGET.
macro(want_package name target)
    find_package(${name} QUIET)
    if(NOT TARGET ${target})
        list(APPEND missing ${name})
    endif()
endmacro()

set(qt_modules Core Gui Qml Quick)
if(NOT APPLE)
    list(APPEND qt_modules DBus)
endif()
if(QUORVANE_TESTS)
    list(APPEND qt_modules Test)
endif()
find_package(Qt6 6.4 QUIET OPTIONAL_COMPONENTS ${qt_modules})
foreach(module ${qt_modules})
    if(NOT TARGET Qt6::${module})
        list(APPEND missing "Qt6${module} (6.4 or later)")
    endif()
endforeach()

want_package(nlohmann_json nlohmann_json::nlohmann_json)
if(NOT APPLE)
    find_package(PkgConfig QUIET)
    if(PKG_CONFIG_FOUND)
        want_pkg_config(GLIB glib-2.0)
        want_pkg_config(KEYBOARD_ACCESS libacl libsystemd libudev)
        # Of these two only the headers: see OpenALAudioLibrary and PulseAudioLibrary.
        want_pkg_config(OPENAL openal)
        want_pkg_config(PULSE libpulse)
        want_pkg_config(SNDFILE sndfile)
        want_pkg_config(UDEV libudev)
        want_pkg_config(XCB xcb xcb-cursor xcb-randr xcb-render xcb-renderutil
                       xcb-shape xcb-xinput)
    else()
        list(APPEND missing pkg-config)
    endif()
endif()

if(QUORVANE_TESTS)
    want_package(GTest GTest::gmock_main)
    if(PKG_CONFIG_FOUND)
        want_pkg_config(ACL libacl)
        want_pkg_config(EBUR128 libebur128)
        want_pkg_config(KISSFFT kissfft-float)
        want_pkg_config(XTEST xcb xcb-xtest)
    endif()
endif()

if(missing)
    list(REMOVE_DUPLICATES missing)
    list(JOIN missing "\n  " missing)
    message(FATAL_ERROR "Not found, or without what a build needs of it:\n  ${missing}\n"
        "tools/install gets all of it on Debian 12; elsewhere, install these by your system's names.")
endif()
