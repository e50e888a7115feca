# Writes the lines that an instrument sends to a file, each behind its date and time.
#
#     .\logger.ps1 COM1 readings.csv 1000
param(
    [Parameter(Mandatory)] [string] $Port,
    [Parameter(Mandatory)] [string] $File,
    [Parameter(Mandatory)] [int] $Count
)

$comm = New-Object -ComObject TarnLink.TarnComm
$comm.AutoReceive = $false # what comes is for LineInput, and not for the terminal
$comm.CommPort = $Port
$comm.Settings = '9600,n,8,1'
$comm.InTimeOut = 60000 # ms; LineInput is empty when none came in time
$comm.PortOpen = $true
if (-not $comm.PortOpen) { throw "$Port does not open: $($comm.PortStatus)" }

try {
    for ($left = $Count; $left -gt 0; ) {
        $reading = $comm.LineInput
        if (-not $reading) { continue }
        $stamp = (Get-Date).ToString('yyyy-MM-dd HH:mm:ss', [cultureinfo]::InvariantCulture)
        "$stamp,$reading" | Add-Content -LiteralPath $File
        $left--
    }
}
finally {
    $comm.PortOpen = $false
}
