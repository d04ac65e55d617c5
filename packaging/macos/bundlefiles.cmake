# What the application bundle consists of besides the program, made alike for the bundle and for
# the tests.
set(PLENAURA_MACOS_DIR "${CMAKE_CURRENT_LIST_DIR}")

function(plenaura_info_plist file)
  configure_file("${PLENAURA_MACOS_DIR}/Info.plist.in" "${file}" @ONLY)
endfunction()

# plenaura_iconset(<folder> <variable>)
# Draws the application's icon in every size that macOS asks for; the variable gets the files.
function(plenaura_iconset folder variable)
  set(drawing "${PLENAURA_MACOS_DIR}/../icons/com.tarnel.Plenaura.svg")
  file(MAKE_DIRECTORY "${folder}")
  foreach(size 16 32 128 256 512)
    math(EXPR twice "2 * ${size}")
    set(plain "${folder}/icon_${size}x${size}.png")
    set(retina "${folder}/icon_${size}x${size}@2x.png")
    add_custom_command(OUTPUT "${plain}" "${retina}"
      COMMAND rendericon "${drawing}" ${size} "${plain}"
      COMMAND rendericon "${drawing}" ${twice} "${retina}"
      DEPENDS rendericon "${drawing}" VERBATIM)
    list(APPEND files "${plain}" "${retina}")
  endforeach()
  set(${variable} ${files} PARENT_SCOPE)
endfunction()
