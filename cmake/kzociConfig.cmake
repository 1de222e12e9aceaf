include(${CMAKE_CURRENT_LIST_DIR}/kzociTargets.cmake)

# Written in C++, they need nothing of its library: a C compiler links them.
foreach(kzoci_library IN ITEMS kzoci::tnsname kzoci::platform kzoci::kzoci)
  get_target_property(kzoci_configurations ${kzoci_library} IMPORTED_CONFIGURATIONS)
  foreach(kzoci_configuration IN LISTS kzoci_configurations)
    set_property(TARGET ${kzoci_library}
                 PROPERTY IMPORTED_LINK_INTERFACE_LANGUAGES_${kzoci_configuration} "")
  endforeach()
endforeach()
