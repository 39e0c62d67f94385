# cmake -DOUTPUT=FILE -DINPUTS="a.js|b.js" -P join_scripts.cmake
# Joins scripts into one, each ended by ";" so that the next cannot read as
# a continuation of it.
file(WRITE ${OUTPUT} "")
string(REPLACE "|" ";" INPUTS "${INPUTS}")
foreach(input IN LISTS INPUTS)
  file(READ ${input} text)
  file(APPEND ${OUTPUT} "${text};\n")
endforeach()
