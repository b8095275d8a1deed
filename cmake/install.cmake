# Installation: the library, its headers, a CMake package (find_package(kprcv) gives kprcv::kprcv) and kprcv.pc.
if(KPRCV_SANITIZE)
    return()
endif()

include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kprcv)

install(TARGETS kprcv EXPORT kprcv LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT kprcv NAMESPACE kprcv:: FILE kprcvConfig.cmake DESTINATION ${package_dir})

write_basic_package_version_file(kprcvConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kprcvConfigVersion.cmake DESTINATION ${package_dir})

# Relative, so that an installation can be moved as a whole.
file(RELATIVE_PATH include_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/kprcv.pc.in kprcv.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kprcv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
