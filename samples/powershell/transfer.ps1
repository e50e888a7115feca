# Sends a file by ZModem, or receives the one that the far end sends.
#
#     .\transfer.ps1 COM1 send C:\notes.txt
#     .\transfer.ps1 COM1 receive C:\notes.txt
#
# The file is told by its whole path. The first file that is received gets that name; those behind it bring names of
# their own: receive from a far end that you trust. A 64-bit PowerShell wants the 64-bit module to be registered.
param(
    [Parameter(Mandatory)] [string] $Port,
    [Parameter(Mandatory)] [ValidateSet('send', 'receive')] [string] $Action,
    [Parameter(Mandatory)] [string] $File
)

$zModem = 5
$noDialog = 0

$comm = New-Object -ComObject TarnLink.TarnComm
$comm.CommPort = $Port
$comm.Settings = '115200,n,8,1'
$comm.XferProtocol = $zModem
$comm.XferStatusDialog = $noDialog
$comm.PortOpen = $true # raises no error: PortOpen and PortStatus tell
if (-not $comm.PortOpen) { throw "$Port does not open: $($comm.PortStatus)" }

try {
    if ($Action -eq 'send') { $comm.Upload = $File } else { $comm.Download = $File }
    if (-not $comm.WaitUntilEndOfTransfer()) { throw 'The transfer failed.' }
    if (-not (Test-Path -LiteralPath $File)) { throw 'No file went over.' } # a lost file alone makes no failure
    "${File}: $((Get-Item -LiteralPath $File).Length) bytes."
}
finally {
    $comm.PortOpen = $false
}
