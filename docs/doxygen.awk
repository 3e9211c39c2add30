# What doxygen reads of a header: comments in front of something become "///", comments behind
# something "///<" with their further lines, and a comment in front of the namespace is the file's.
# The text stays as it is written: marks that doxygen or Markdown would take for theirs are escaped,
# but not in `code`, "text" or an indented example, where both leave them alone.

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
