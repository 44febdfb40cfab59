# Writes kryn.pc at install time, from the prefix the install really goes to
# (cmake --install --prefix P), so that pkg-config finds the files under P.
# Run by install(CODE) with KRYN_PC_IN, KRYN_PC_OUT, KRYN_PC_LIBDIR_REL,
# KRYN_PC_INCLUDEDIR_REL, PROJECT_DESCRIPTION, PROJECT_VERSION and
# KRYN_LICENSE set.
set(KRYN_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
foreach(kind LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${KRYN_PC_${kind}_REL}")
    set(KRYN_PC_${kind} "${KRYN_PC_${kind}_REL}")
  else()
    set(KRYN_PC_${kind} "\${prefix}/${KRYN_PC_${kind}_REL}")
  endif()
endforeach()
configure_file("${KRYN_PC_IN}" "${KRYN_PC_OUT}" @ONLY)
