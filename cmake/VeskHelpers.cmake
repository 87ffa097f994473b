# Targets of C++ objects linked by the C driver would get libstdc++ added by
# CMake as an implicit library of C++; the device's libraries must do without.
# (Targets linked by the C++ driver get it from the driver itself.)
list(REMOVE_ITEM CMAKE_CXX_IMPLICIT_LINK_LIBRARIES stdc++)

# Flags shared by every C++ target that ends up in a device image.
function(vesk_device_target target)
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${VESK_CXX_FLAGS}>)
  # Link with the C driver and refuse undefined symbols, so that any use of
  # libstdc++ or libgcc_s fails the build instead of showing up on the device.
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE C)
  # clang's sanitizer runtime comes only with the program (the fuzz build).
  if(NOT VESK_FUZZ)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
  target_link_options(${target} PRIVATE -Wl,--as-needed)
endfunction()
