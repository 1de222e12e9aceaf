# Prints a names file of made-up services, or the same facts as a libpq service
# file.
#
#   awk -v entries=N [-v seed=S] [-v form=names|service] -f bench/names_file.awk
#
# The same arguments give the same bytes under every awk: the random numbers are
# our own and stay below 2^53, where every awk's arithmetic is exact. A shorter
# file is the beginning of a longer one. An entry of the names file has 225 bytes
# on average: 214 that are always there, and two words of 11 letters together.

# The next number of 0 to limit - 1. The Lehmer generator of Park and Miller:
# products stay below 2^46.
function random(limit) {
  state = (state * 16807) % 2147483647
  return state % limit
}

# A word of shortest to shortest + spread - 1 letters.
function word(shortest, spread,    length_left, letters) {
  for (length_left = shortest + random(spread); length_left > 0; length_left--)
    letters = letters substr("abcdefghijklmnopqrstuvwxyz", 1 + random(26), 1)
  return letters
}

function print_entry() {
  printf "%s =\n  (DESCRIPTION =\n    (ADDRESS_LIST =\n", name
  printf "      (ADDRESS = (PROTOCOL = TCP)(HOST = %s)(PORT = %d))\n    )\n", host, port
  printf "    (KZLB_CONNECT_TIMEOUT = %d)\n", timeout
  printf "    (CONNECT_DATA =\n      (SERVICE_NAME = %s)\n    )\n  )\n\n", service
}

function print_section() {
  printf "[%s]\nhost=%s\nport=%d\ndbname=%s\nconnect_timeout=%d\n\n", name, host, port, service, timeout
}

BEGIN {
  if (entries !~ /^[0-9]+$/ || (form != "" && form != "names" && form != "service")) {
    print "usage: awk -v entries=N [-v seed=S] [-v form=names|service] -f names_file.awk" >"/dev/stderr"
    exit 64
  }
  # Neighbouring seeds begin far apart, and no seed begins at 0.
  state = (1 + seed * 65539) % 2147483646 + 1
  for (i = 0; i < entries; i++) {
    name = sprintf("svc%07d", i)
    host = word(3, 5) ".example.com"
    port = 1024 + random(8976)
    service = word(4, 5)
    timeout = 1000 + random(9000)
    if (form == "service") print_section(); else print_entry()
  }
}
