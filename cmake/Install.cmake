# What `cmake --install` puts where. The programs find their resources in share/tavrin beside their own folder.

set(data ${CMAKE_INSTALL_DATADIR})

if(TARGET tvrn)
  install(TARGETS tvrn)
  install(FILES Resources/man/tvrn.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES Resources/completions/tvrn.bash RENAME tvrn DESTINATION ${data}/bash-completion/completions)
  install(FILES Resources/completions/_tvrn DESTINATION ${data}/zsh/site-functions)
  install(FILES Resources/completions/tvrn.fish DESTINATION ${data}/fish/vendor_completions.d)
  # Icons are within the window, the help is for it alone, and the desktop's files have places of their own.
  install(DIRECTORY Resources/ DESTINATION ${data}/tavrin USE_SOURCE_PERMISSIONS
    PATTERN completions EXCLUDE PATTERN desktop EXCLUDE PATTERN help EXCLUDE PATTERN icons EXCLUDE
    PATTERN man EXCLUDE PATTERN menus EXCLUDE)
endif()

if(TARGET tavrin)
  set(id net.calderwick.tavrin)
  install(TARGETS tavrin)
  install(DIRECTORY Resources/help DESTINATION ${data}/tavrin)
  install(FILES Resources/man/tavrin.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES Resources/completions/tavrin.bash RENAME tavrin DESTINATION ${data}/bash-completion/completions)
  install(FILES Resources/completions/_tavrin DESTINATION ${data}/zsh/site-functions)
  install(FILES Resources/completions/tavrin.fish DESTINATION ${data}/fish/vendor_completions.d)

  install(FILES Resources/desktop/${id}.desktop DESTINATION ${data}/applications)
  install(FILES Resources/desktop/${id}.metainfo.xml DESTINATION ${data}/metainfo)
  install(FILES Resources/icons/${id}.svg DESTINATION ${data}/icons/hicolor/scalable/apps)
  # Drawn for this size; and one for panels and menus that draw no SVG.
  install(FILES Resources/icons/${id}-16.svg RENAME ${id}.svg DESTINATION ${data}/icons/hicolor/16x16/apps)
  install(FILES Resources/icons/${id}-48.png RENAME ${id}.png DESTINATION ${data}/icons/hicolor/48x48/apps)

  # The menus of file managers. Plasma runs only those that are executable.
  install(PROGRAMS Resources/menus/${id}.desktop DESTINATION ${data}/kio/servicemenus)
  install(FILES Resources/menus/${id}.nemo_action DESTINATION ${data}/nemo/actions)
  install(FILES Resources/menus/${id}.sendto.desktop RENAME ${id}.desktop DESTINATION ${data}/Thunar/sendto)
endif()
