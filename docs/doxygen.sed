# Doxygen reads comments with a third slash only; a comment after code documents that code.
s@^( *)//( |$)@\1/// @
t comment
s@^([^"]*[;,{}] *)// @\1///< @
t comment
b
:comment
# In the comment itself, nothing is markup.
h
s@^.*///<? ?@@
s@<@\\<@g
s@#@\\#@g
s@\$@\\$@g
x
s@(///<? ?).*$@\1@
G
s@\n@@
