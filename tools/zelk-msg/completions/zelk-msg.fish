# Completion of zelk-msg for fish.

set -l commands show check diff graph sequence make kinds
set -l kinds StateCommand StateCommandWithEventId RegisterCommand UnregisterCommand \
    EnableLogModeCommand CreateSubscriberCommand DeleteSubscriberCommand \
    NormalGlobalEventCommand-6 NormalGlobalEventCommand-10 StateResponse MetaDataResponse \
    RegisterMessageQueueResponse XmlAttrToEventMappingResponse StateSpaceMetaDataResponse \
    InfoResponse InfraMetaDataAppInfo InfoRequestData InfoResponseData

complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -f
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -a show -d 'Show messages'
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -a check -d 'Check messages'
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -a diff -d 'Compare messages or conversations'
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -a graph -d 'Draw a state space'
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -a sequence -d 'Draw a conversation'
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -a make -d 'Write a message of a kind'
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -a kinds -d 'List or describe the kinds'
complete -c zelk-msg -n "not __fish_seen_subcommand_from $commands" -l version -d 'Print the version'

complete -c zelk-msg -l color -x -a 'auto always never' -d 'When to use colours'
complete -c zelk-msg -l memory-limit -x -d 'Most memory to take'
complete -c zelk-msg -s h -l help -d 'Print help'

complete -c zelk-msg -n '__fish_seen_subcommand_from show' -l kind -x -a "$kinds" -d 'Only messages of this kind'
complete -c zelk-msg -n '__fish_seen_subcommand_from show' -l grep -x -d 'Only messages with such a member'
complete -c zelk-msg -n '__fish_seen_subcommand_from show' -l stats -d 'Count messages'
complete -c zelk-msg -n '__fish_seen_subcommand_from show' -l json -d 'Print indented JSON'
complete -c zelk-msg -n '__fish_seen_subcommand_from show' -l follow -d 'Go on reading when the file grows'

complete -c zelk-msg -n '__fish_seen_subcommand_from check' -l strict -d 'Refuse unknown members, too'
complete -c zelk-msg -n '__fish_seen_subcommand_from check' -s j -l jobs -x -d 'Number of threads'
complete -c zelk-msg -n '__fish_seen_subcommand_from check' -s q -l quiet -d 'Print no summary'

complete -c zelk-msg -n '__fish_seen_subcommand_from diff' -s q -l quiet -d 'Print nothing'

complete -c zelk-msg -n '__fish_seen_subcommand_from graph' -l svg -r -d 'Write a drawing'
complete -c zelk-msg -n '__fish_seen_subcommand_from graph' -l format -x -a 'dot mermaid plantuml svg' -d 'Language'
complete -c zelk-msg -n '__fish_seen_subcommand_from graph' -l lint -d 'List what is odd'
complete -c zelk-msg -n '__fish_seen_subcommand_from graph' -l initial -x -d 'Initial state'
complete -c zelk-msg -n '__fish_seen_subcommand_from graph' -l number -x -d 'Which state space'

complete -c zelk-msg -n '__fish_seen_subcommand_from sequence' -l format -x -a 'mermaid text' -d 'Kind of drawing'

complete -c zelk-msg -n '__fish_seen_subcommand_from make' -f -a "$kinds"
complete -c zelk-msg -n '__fish_seen_subcommand_from make' -l set -x -d 'Set a member'
complete -c zelk-msg -n '__fish_seen_subcommand_from make' -l edit -r -d 'Set members from a JSON object'
complete -c zelk-msg -n '__fish_seen_subcommand_from make' -l indent -d 'Print it indented'

complete -c zelk-msg -n '__fish_seen_subcommand_from kinds' -f -a "$kinds"
