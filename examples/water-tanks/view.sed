# Turns the system's log into a few clear lines: time, and what happened.
# A log line is: time process[pid] level category: message

# To: clock|process|level|category|message
s/^[^T]*T([0-9:]{8})[^ ]* ([^[ ]+)\[[0-9]+\] ([A-Za-z]+) +([^ :]+): (.*)$/\1|\2|\3|\4|\5/
# Whatever is no log line is shown as it is.
t known
p
d
:known

s/^([^|]*)\|[^|]*\|(Fatal|Error|Warning)\|[^|]*\|(.*)/\1  \2: \3/p
s/^([^|]*)\|[^|]*\|Info\|WaterTanks\.[^|]*\|(.*)/\1  \2/p
s/^([^|]*)\|MainProcess\|[^|]*\|[^|]*\|VelaVersion: (.*)/\1  runtime \2/p
s/^([^|]*)\|MainProcess\|[^|]*\|[^|]*\|Application '.*' was setup successfully\..*/\1  the system is up/p
s/^([^|]*)\|MainProcess\|[^|]*\|[^|]*\|Application '.*' terminates\..*/\1  the system goes down/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Process '(.*)' started successfully\./\1  process    \2 is up/p
# The components, phase by phase.
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Component '(.*)' in process '(.*)' created\./\1  created    \2 in \3/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Setuped component'(.*)' in process '(.*)' \./\1  set up     \2 in \3/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Configured component'(.*)' in process '(.*)' \./\1  configured \2 in \3/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Started component'(.*)' in process '(.*)'\./\1  started    \2 in \3/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Stopped component'(.*)' in process '(.*)'\./\1  stopped    \2 in \3/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Reset config of component '(.*)' in process '(.*)'\./\1  reset      \2 in \3/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Disposed component'(.*)' in process '(.*)'\./\1  disposed   \2 in \3/p
s/^([^|]*)\|[^|]*\|[^|]*\|[^|]*\|Destroyed component '(.*)' in process '(.*)' \./\1  destroyed  \2 in \3/p
