# Our comments are plain; Doxygen reads those with a third stroke. Behind code they speak of it.
s@^( *)//( |$)@\1/// @
t comment
s@^([^"]*[;,{}] *)// @\1///< @
t comment
b
:comment
# In the comment alone: no markup is meant.
h
s@^.*///<? ?@@
s@<@\\<@g
s@#@\\#@g
s@\$@\\$@g
x
s@(///<? ?).*$@\1@
G
s@\n@@
