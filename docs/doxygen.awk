# Converts a header's comments for Doxygen: comments before a declaration become "///", comments
# after it, with their continuation lines, become "///<", and a comment before the namespace
# documents the file. Escapes characters that Doxygen or Markdown would interpret, except in `code`,
# "text" and indented examples, which both leave alone.

function escaped(text,  result, plain) {
  if (text ~ /^     /) return text
  while (match(text, /`[^`]*`|"[^"]*"/)) {
    plain = substr(text, 1, RSTART - 1)
    gsub(/[\\@<>#%&*_~|\[\]]/, "\\\\&", plain)
    result = result plain substr(text, RSTART, RLENGTH)
    text = substr(text, RSTART + RLENGTH)
  }
  gsub(/[\\@<>#%&*_~|\[\]]/, "\\\\&", text)
  return result text
}

function endBlock() {
  if (block && /^namespace /) print "/// \\file"
  printf "%s", block
  block = ""
}

/^ *\/\// {
  column = index($0, "//")
  if (column == behind) {
    print substr($0, 1, column - 1) "///<" escaped(substr($0, column + 2))
  } else {
    behind = 0
    block = block substr($0, 1, column - 1) "///" escaped(substr($0, column + 2)) "\n"
  }
  next
}

{
  behind = 0
  endBlock()
}

/[^ {:] +\/\/ / && !/^}/ && !/^#/ {
  behind = index($0, " // ") + 1
  print substr($0, 1, behind - 1) "///<" escaped(substr($0, behind + 2))
  next
}

{ print }
