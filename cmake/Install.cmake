# What is installed where: components tool, server, pages, demo, which are also the Debian packages. The layout
# below the prefix is Debian's; debian/rules only calls cmake --install.
include(GNUInstallDirs)
set(GC_UNIT_DIR lib/systemd/system CACHE PATH "Where systemd's units are installed")

# Installs texts that name other installed files. In the sources these are the paths of the Debian packages; the
# folders of this installation replace them: gc_install_texts(COMPONENT DESTINATION FILE|PROGRAM|SETTINGS FILES...)
# SETTINGS belong to the owner: existing files are kept.
function(gc_install_texts component destination type)
  foreach(file IN LISTS ARGN)
    cmake_path(ABSOLUTE_PATH file)
    install(CODE "
      set(gc_file [==[${file}]==])
      set(gc_destination [==[${destination}]==])
      set(gc_type ${type})
      set(gc_settings_folder [==[${CMAKE_INSTALL_SYSCONFDIR}]==])
      set(gc_temporary_folder [==[${CMAKE_CURRENT_BINARY_DIR}/install]==])
      include([==[${PROJECT_SOURCE_DIR}/cmake/InstallText.cmake]==])"
      COMPONENT ${component})
  endforeach()
endfunction()
