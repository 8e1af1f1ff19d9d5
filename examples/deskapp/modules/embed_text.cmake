# Writes OUT, a header holding the text of IN as the bytes of a
# zero-terminated array kDeskStatXrc.
file(READ "${IN}" hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "((0x..,){24})" "\\1\n" bytes "${bytes}")
file(WRITE "${OUT}.tmp" "// Generated from DeskStat.xrc; do not edit.\n#pragma once\ninline constexpr unsigned char kDeskStatXrc[] = {\n${bytes}0};\n")
file(RENAME "${OUT}.tmp" "${OUT}")
