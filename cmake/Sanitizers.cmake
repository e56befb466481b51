# -DKORVANE_SANITIZE=ON builds everything with AddressSanitizer and UndefinedBehaviorSanitizer.
option(KORVANE_SANITIZE "Build with ASan and UBSan; any finding ends the program" OFF)

if(KORVANE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # vptr would need the type information of Qt classes across hidden visibility.
  add_compile_options(-fno-sanitize=vptr)
  add_link_options(-fsanitize=address,undefined)
endif()
