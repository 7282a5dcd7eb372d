# Answers the calls on standard input in every mode, shows the answers and ends with their status.
# The modes have to agree.
cat >calls
for how in "--mode in" "--mode off" "--mode first" "--mode off --cache 64:2"; do
  "$STATEDB" query --ref "$PAIR/city.dir" $how <calls >now
  status=$?
  [ -f answers ] || cp now answers
  cmp -s answers now || { echo "otherwise with $how:"; diff answers now; }
done
cat answers
exit $status
