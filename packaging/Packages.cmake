# Two Debian packages: cmake --build --preset release --target package; they come to
# build/release/packages. It needs dpkg-dev and file. The target package_check, which needs root,
# lintian and debootstrap, too, installs, runs and removes them in a bare system.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarnwick)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_COMPONENTS_ALL window batch)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_SOURCE_DIR}/PackageTools.cmake")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE tarnwick)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Tarnwick developers <noreply@tarnwick.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_WINDOW_PACKAGE_NAME tarnwick)
set(CPACK_COMPONENT_WINDOW_DESCRIPTION
    "maps chemical states from X-ray absorption image stacks
Tarnwick turns two stacks of camera frames, taken across an X-ray absorption
edge before and behind a sample, into one absorption spectrum per pixel block.
It normalises the spectra, corrects their energies against a standard and fits
them with reference spectra: under the mouse or over the whole image.
.
This package has the window and its guide.")
set(CPACK_DEBIAN_WINDOW_PACKAGE_RECOMMENDS "fonts-ipafont-gothic, qttranslations5-l10n")
set(CPACK_DEBIAN_WINDOW_PACKAGE_SUGGESTS tarnwick-batch)

set(CPACK_DEBIAN_BATCH_PACKAGE_NAME tarnwick-batch)
set(CPACK_COMPONENT_BATCH_DESCRIPTION
    "maps chemical states from X-ray absorption image stacks, unattended
Tarnwick turns two stacks of camera frames, taken across an X-ray absorption
edge before and behind a sample, into one absorption spectrum per pixel block.
It normalises the spectra, corrects their energies against a standard and fits
them with reference spectra.
.
This package has the program that runs batches of commands without a display,
their reference, and how editors show them.")
set(CPACK_DEBIAN_BATCH_PACKAGE_SUGGESTS "tarnwick, slurm-client")

include(CPack)

add_custom_target(package_check
    COMMAND "${CMAKE_COMMAND}" --build "${CMAKE_BINARY_DIR}" --target package
    COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/check-packages" "${CPACK_PACKAGE_DIRECTORY}"
            "$<TARGET_FILE:tarnwick-samples>" "${PROJECT_VERSION}"
    DEPENDS tarnwick-samples
    USES_TERMINAL VERBATIM)
