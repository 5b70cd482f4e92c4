# Completions of quillon for fish. Titles aren't completed: that would need the password.

set -l commands init import list find show add edit trash restore delete categories template passwd info check backup vault otp generate completion

set -l categories login secure-note credit-card identity password bank-account database driver-license email membership outdoor-license passport reward-program router server social-security-number software-license
set -l others document api-credential medical-record ssh-key crypto-wallet

complete -c quillon -f
complete -c quillon -l store -r -F -d 'The store file'
complete -c quillon -l vault -x -d 'The vault of the store'
complete -c quillon -l password-file -r -F -d 'Read the password from a file'
complete -c quillon -l password-fd -x -d 'Read the password from a descriptor'
complete -c quillon -l password-stdin -d 'Read the password from standard input'
complete -c quillon -l json -d 'Print one JSON value'
complete -c quillon -l lang -x -a 'ar de en es fr ja pt' -d 'The language of titles and dates'
complete -c quillon -l help -d 'Explain the command'

complete -c quillon -n "not __fish_seen_subcommand_from $commands" -l version -d 'Print the version'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a init -d 'Make a new store'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a import -d 'Add the logins of a CSV file'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a list -d 'List titles and subtitles'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a find -d 'Find items by title or website'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a show -d 'Show one item'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a add -d 'Add one item'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a edit -d 'Change one item'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a trash -d 'Move one item to the trash'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a restore -d 'Take one item out of the trash'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a delete -d 'Delete one trashed item for good'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a categories -d 'List the categories'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a template -d 'Tell the fields of a category'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a passwd -d 'Change the password of the vault'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a info -d 'Tell what the store holds'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a check -d 'Test every row of the store'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a backup -d 'Copy the store'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a vault -d 'The vaults of the store'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a otp -d 'Print a one-time password'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a generate -d 'Print random passwords'
complete -c quillon -n "not __fish_seen_subcommand_from $commands" -a completion -d 'Print the completions of a shell'

complete -c quillon -n '__fish_seen_subcommand_from init' -l hint -x -d 'What reminds you of the password'
complete -c quillon -n '__fish_seen_subcommand_from import backup' -F
complete -c quillon -n '__fish_seen_subcommand_from import' -l dry-run -d 'Add nothing'
complete -c quillon -n '__fish_seen_subcommand_from list' -l trashed -d 'List the trash'
complete -c quillon -n '__fish_seen_subcommand_from list' -l sort -x -a 'title updated created' -d Order
complete -c quillon -n '__fish_seen_subcommand_from list find' -l long -d 'Show uuids'
complete -c quillon -n '__fish_seen_subcommand_from list find' -l category -x -a "$categories $others" -d 'Only of one category'
complete -c quillon -n '__fish_seen_subcommand_from find add' -l url -x -d Address
complete -c quillon -n '__fish_seen_subcommand_from show' -l reveal -d 'Show secrets'
complete -c quillon -n '__fish_seen_subcommand_from show' -l field -x -a 'title username password url notes' -d 'Print one field alone'
complete -c quillon -n "__fish_seen_subcommand_from add; and not __fish_seen_subcommand_from $categories vault" -a "$categories" -d Category
complete -c quillon -n '__fish_seen_subcommand_from template' -a "$categories $others" -d Category
complete -c quillon -n '__fish_seen_subcommand_from add edit list find' -l tag -x -d Tag
complete -c quillon -n '__fish_seen_subcommand_from edit' -l untag -x -d 'Take a tag away'
complete -c quillon -n '__fish_seen_subcommand_from add' -l title -x -d Title
complete -c quillon -n '__fish_seen_subcommand_from add' -l username -x -d 'User name'
complete -c quillon -n '__fish_seen_subcommand_from add' -l notes -x -d Notes
complete -c quillon -n '__fish_seen_subcommand_from add' -l password -d 'Ask for the password; =- reads standard input'
complete -c quillon -n '__fish_seen_subcommand_from add edit' -l favorite -d 'Mark as a favorite'
complete -c quillon -n '__fish_seen_subcommand_from edit' -l no-favorite -d 'Take the mark away'
complete -c quillon -n '__fish_seen_subcommand_from add edit' -l generate -d 'Make a random password'
complete -c quillon -n '__fish_seen_subcommand_from add edit' -l set -x -a 'title= username= url= notes= password password=-' -d 'Set a field'
complete -c quillon -n '__fish_seen_subcommand_from add edit' -l set-file -x -d 'Set a field to the content of a file'
complete -c quillon -n '__fish_seen_subcommand_from add edit' -l add-field -x -d 'Make a field'
complete -c quillon -n '__fish_seen_subcommand_from edit' -l unset -x -d 'Take a field away'
complete -c quillon -n '__fish_seen_subcommand_from delete' -l force -d 'Even if it is not in the trash'
complete -c quillon -n '__fish_seen_subcommand_from passwd' -l new-password-file -r -F -d 'Read the new password from a file'
complete -c quillon -n '__fish_seen_subcommand_from passwd' -l new-password-fd -x -d 'Read the new password from a descriptor'
complete -c quillon -n '__fish_seen_subcommand_from passwd' -l new-password-stdin -d 'Read the new password from standard input'
complete -c quillon -n '__fish_seen_subcommand_from generate' -l length -x -d Characters
complete -c quillon -n '__fish_seen_subcommand_from generate' -l no-symbols -d 'Without symbols'
complete -c quillon -n '__fish_seen_subcommand_from generate' -l no-digits -d 'Without digits'
complete -c quillon -n '__fish_seen_subcommand_from generate' -l avoid-ambiguous -d 'Without characters that look alike'
complete -c quillon -n '__fish_seen_subcommand_from generate' -l words -x -d 'English words instead'
complete -c quillon -n '__fish_seen_subcommand_from generate' -l separator -x -d 'Between the words'
complete -c quillon -n '__fish_seen_subcommand_from generate' -l pin -x -d 'Digits of a PIN instead'
complete -c quillon -n '__fish_seen_subcommand_from generate' -l count -x -d 'How many'
complete -c quillon -n '__fish_seen_subcommand_from otp' -l qr -d 'Draw the URL as a QR code'
complete -c quillon -n '__fish_seen_subcommand_from otp' -l at -x -d 'Seconds since 1970'
complete -c quillon -n '__fish_seen_subcommand_from otp' -l url -x -d 'Of this URL; - asks for it'
complete -c quillon -n '__fish_seen_subcommand_from otp' -l url-file -r -F -d 'Of the URL in a file'
complete -c quillon -n '__fish_seen_subcommand_from vault; and not __fish_seen_subcommand_from list add icon color' -a list -d 'List the vaults'
complete -c quillon -n '__fish_seen_subcommand_from vault; and not __fish_seen_subcommand_from list add icon color' -a add -d 'Add a vault'
complete -c quillon -n '__fish_seen_subcommand_from vault; and not __fish_seen_subcommand_from list add icon color' -a icon -d 'The icon of the vault'
complete -c quillon -n '__fish_seen_subcommand_from vault; and not __fish_seen_subcommand_from list add icon color' -a color -d 'The colour of the vault'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from add' -l own-password -d 'Ask for a password of its own'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from add' -l own-password-file -r -F -d 'Read its own password from a file'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from add' -l own-password-fd -x -d 'Read its own password from a descriptor'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from add' -l own-password-stdin -d 'Read its own password from standard input'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from add' -l hint -x -d 'What reminds you of its own password'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from icon' -l set -r -F -d 'Take this PNG, JPEG or SVG'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from icon' -l save -r -F -d 'Copy it to a new file'
complete -c quillon -n '__fish_seen_subcommand_from vault; and __fish_seen_subcommand_from icon color' -l clear -d 'Take it away'
complete -c quillon -n '__fish_seen_subcommand_from completion' -a 'bash zsh fish'
