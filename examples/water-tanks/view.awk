# Turns the system's log into a few clear lines: time, and what happened.
# A log line is: time process[pid] level category: message

function show(text) { printf "%s  %s\n", substr($1, 12, 8), text; fflush() }
function quoted(n,    parts) { split(message, parts, "'"); return parts[2 * n] }

{
  level = $3
  message = $0
  sub(/^[^ ]+ +[^ ]+ +[^ ]+ +[^ ]+: /, "", message)
}

level == "Fatal" || level == "Error" || level == "Warning" { show(level ": " message); next }
$4 ~ /^WaterTanks\./ && level == "Info" { show(message); next }
message ~ /^VelaVersion/ && $2 ~ /^MainProcess/ { show("runtime " substr(message, 14)); next }
message ~ /^Process '.*' started successfully/ { show("process    " quoted(1) " is up"); next }
message ~ /^Component '.*' in process '.*' created/ { show("created    " quoted(1) " in " quoted(2)); next }
message ~ /^Setuped component/ { show("set up     " quoted(1) " in " quoted(2)); next }
message ~ /^Configured component/ { show("configured " quoted(1) " in " quoted(2)); next }
message ~ /^Started component/ { show("started    " quoted(1) " in " quoted(2)); next }
message ~ /^Stopped component/ { show("stopped    " quoted(1) " in " quoted(2)); next }
message ~ /^Reset config of component '.*' in process/ { show("reset      " quoted(1) " in " quoted(2)); next }
message ~ /^Disposed component/ { show("disposed   " quoted(1) " in " quoted(2)); next }
message ~ /^Destroyed component/ { show("destroyed  " quoted(1) " in " quoted(2)); next }
message ~ /^Application '.*' was setup successfully/ && $2 ~ /^MainProcess/ { show("the system is up"); next }
message ~ /^Application '.*' terminates/ && $2 ~ /^MainProcess/ { show("the system goes down"); next }
