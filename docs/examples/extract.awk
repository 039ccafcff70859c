# Writes each code block of a guide whose fence names a file to that file in the variable folder: "```c entropy.c".
/^```/ { file = $2; next }
file { print > (folder "/" file) }
