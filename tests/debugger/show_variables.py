# Runs the program and writes the variables of each function that calls `Stop`, as gdb shows them,
# to the file $output. Run by gdb.

import re

import gdb

# Additional expressions to show.
EXPRESSIONS = {"ShowWaysToAnObject": ["((ODM::PositionC*)position.impl_)->point_.y_"]}


def is_pointer_to_class(value):
    target = value.type.strip_typedefs()
    return (target.code == gdb.TYPE_CODE_PTR
            and target.target().strip_typedefs().code == gdb.TYPE_CODE_STRUCT)


def show(out, expression):
    try:
        text = gdb.execute("output " + expression, to_string=True)
    except gdb.error as error:
        text = str(error)
    text = re.sub(r"0x[0-9a-f]{5,}", "ADDRESS", text)
    text = text.replace("<(unsigned short)", "<")  # as clang writes it
    text = re.sub(r"capacity \d+", "capacity N", text)
    out.write("%s = %s\n" % (expression, text))


gdb.execute("set width 0")
gdb.execute("set print pretty on")
gdb.execute("break Stop")
gdb.execute("run")
with open(gdb.convenience_variable("output").string(), "w", encoding="utf-8") as out:
    while gdb.selected_inferior().pid != 0:
        gdb.execute("up", to_string=True)
        frame = gdb.selected_frame()
        function = frame.name().replace("(anonymous namespace)::", "").replace("> >", ">>")
        out.write("--- %s\n" % function)
        variables = [symbol for symbol in frame.block() if symbol.is_variable]
        for symbol in sorted(variables, key=lambda variable: variable.line):
            show(out, symbol.name)
            if is_pointer_to_class(frame.read_var(symbol)):
                show(out, "*" + symbol.name)
        for expression in EXPRESSIONS.get(function.split("::")[-1], ()):
            show(out, expression)
        gdb.execute("continue")
