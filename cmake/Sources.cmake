# vig_sources_in(FOLDER VARIABLE): sets the variable to the sources in the folder.
function(vig_sources_in folder variable)
  file(GLOB sources ${folder}/*.cpp)
  # A new file changes its folder. CONFIGURE_DEPENDS would hide from the scripts how much there is to build.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${folder})
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()
