# Surveys the machine for the error report. Read as standard input by csh or sh, whichever is there; so only
# what both understand alike: plain commands, pipes and echo.
echo "----- System Survey ---------"
echo ""
date
uname -a
cat /etc/os-release
echo ""
echo "----- Locale ---------"
locale
echo ""
echo "----- Processors and Memory ---------"
nproc
head -n 3 /proc/meminfo
echo ""
echo "----- Limits ---------"
sh -c 'ulimit -a'
echo ""
echo "----- File Systems ---------"
df -k -T
echo ""
echo "----- Folders ---------"
sh -c 'ls -ld "$HOME" "${XDG_DATA_HOME:-$HOME/.local/share}" "${XDG_CONFIG_HOME:-$HOME/.config}"'
