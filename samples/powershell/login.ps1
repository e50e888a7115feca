# Dials, logs in by look-up, and returns what the far end says to a command.
#
#     .\login.ps1 'My Modem' 5551234 guest tarn 'far$ ' 'date'
#
# The modem is one that Windows knows; CommPorts lists them.
param(
    [Parameter(Mandatory)] [string] $Modem,
    [Parameter(Mandatory)] [string] $Number,
    [Parameter(Mandatory)] [string] $User,
    [Parameter(Mandatory)] [string] $Password,
    [Parameter(Mandatory)] [string] $Prompt,
    [Parameter(Mandatory)] [string] $Command
)

$noDialog = 0
$comm = New-Object -ComObject TarnLink.TarnComm

# LookUp gives the place of the text that came, from 0, or -1 when the time is over.
function Wait-Text([string[]] $Texts, [int] $Seconds = 15) {
    $comm.LookUpText = $Texts -join '|'
    $comm.LookUpTimeOut = 1000 * $Seconds
    $found = $comm.LookUp
    if ($found -lt 0) { throw "Nobody says $($Texts[0])." }
    if ($found -gt 0) { throw "The answer is $($Texts[$found])." }
}

$comm.AutoReceive = $false # what comes is for LookUp, and not for the terminal
$comm.DialStatusDialog = $noDialog
$comm.LookUpSeparator = '|'
$comm.CommPort = $Modem
$comm.PhoneNumber = $Number
$comm.PortOpen = $true # dials, and comes back when the call is connected or has failed
if (-not $comm.PortOpen) { throw "No call: $($comm.PortStatus)" }

try {
    Wait-Text 'login:'
    $comm.OutputLine = $User
    Wait-Text 'Password:'
    $comm.OutputLine = $Password
    Wait-Text $Prompt, 'incorrect'
    $comm.LookUpInputLen = 4096 # what comes ahead of the prompt is kept
    $comm.OutputLine = $Command
    Wait-Text $Prompt
    $comm.LookUpInput
}
finally {
    $comm.PortOpen = $false # hangs up
}
