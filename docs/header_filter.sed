# The headers say once what a group of functions does, in the block that opens the group. Doxygen distributes the block
# of a group's first member instead: this gives it one, the group's title as its brief text.
/@name /,/@{ \*\// {
    s|^/\*\* @name \(.*\)|/** @name \1\n *  @{ */\n/** \1.\n *|
    s|^ \*  @{ \*/$| */|
}
# The records of two parts.
s|^typedef struct { \(Kel[0-9a-z]*\) *re, im; } \(Kel[0-9a-z]*\);|/** Complex sample. */ typedef struct { \1 re; /**< real part */ \1 im; /**< imaginary part */ } \2;|
