' The class server as a late-bound client sees it: every class by its ProgID, the road of one
' request on the embedded store, arguments by value, by reference and left out, and the library's
' errors in Err. Usage: cscript //nologo suite.vbs EXPECTATIONS STORE; it has passed only when its
' last line says so.
' EXPECTATIONS is what vrdppo_idl writes beside the IDL; STORE a file the store may create.
Option Explicit

Dim failures, checks, created, calls
failures = 0 : checks = 0 : created = 0 : calls = 0

Sub Check(ok, what)
  checks = checks + 1
  If Not ok Then
    failures = failures + 1
    WScript.Echo "FAIL: " & what
  End If
End Sub

' The character code of c. The script host has neither AscW nor ChrW; Asc gives the ANSI code,
' which is the code point below 128, and that is enough for the small keys and counts read here.
Function CodeOf(c)
  CodeOf = Asc(c)
  If CodeOf > 127 Then CodeOf = -1
End Function

' n copies of c. The script host has no String function either.
Function Repeat(n, c)
  Dim k
  Repeat = ""
  For k = 1 To n
    Repeat = Repeat & c
  Next
End Function

' The Long at the start of a state: its first two characters, low word first.
Function KeyOf(state)
  KeyOf = CodeOf(Mid(state, 1, 1)) + 65536 * CodeOf(Mid(state, 2, 1))
End Function

' The number of records in a Buffer state: header characters 7 and 8 hold the count.
Function CountOf(buffer)
  CountOf = CodeOf(Mid(buffer, 7, 1)) + 65536 * CodeOf(Mid(buffer, 8, 1))
End Function

Dim expectations, store, conn, fso, file, line, parts
Set fso = CreateObject("Scripting.FileSystemObject")
expectations = WScript.Arguments(0)
store = WScript.Arguments(1)
conn = "Provider=vrdppo.Embedded;Data Source=" & store

' Fixed arrays: the script host's ReDim of a global array fails.
Dim names(200), stateChars(200), n
n = 0
Set file = fso.OpenTextFile(expectations, 1)
Do While Not file.AtEndOfStream
  line = file.ReadLine
  parts = Split(line, " ")
  If parts(0) = "class" Then
    names(n) = parts(1)
    stateChars(n) = CLng(parts(5))
    n = n + 1
  End If
Loop
file.Close
Check n = 84, "the expectations list 84 classes, not " & n

' Every class by its ProgID; a fresh record is zero bytes, and its state as many U+0000.
Dim i, o, s, zeros
For i = 0 To n - 1
  Set o = CreateObject("vrdppo." & names(i))
  created = created + 1
  s = o.GetState
  calls = calls + 1
  Check Len(s) = stateChars(i), names(i) & ".GetState has " & Len(s) & " characters"
  zeros = Repeat(stateChars(i), Chr(0))
  Check s = zeros, names(i) & ": a fresh state is all U+0000"
  Set o = Nothing
Next

' The road of one request on the embedded store, for a table of each generation: Commit with key
' 0, the key from GetState, Load with criteria, Delete, and Load finding nothing. A class whose
' Load requires lTop is given 0.
Function LoadOf(t, criteria, requiresTop)
  If requiresTop Then
    LoadOf = t.Load(criteria, conn, 0)
  Else
    LoadOf = t.Load(criteria, conn)
  End If
End Function

Sub Road(className, keyColumn, requiresTop)
  Dim t, state, key, committed, buffer, after
  Set t = CreateObject("vrdppo." & className)
  created = created + 1
  state = t.GetState
  committed = t.Commit(state, conn)
  calls = calls + 2
  Check committed = True, className & ".Commit answers True"
  Check KeyOf(state) = 0, className & ": Commit does not write the caller's state back"
  after = t.GetState
  key = KeyOf(after)
  calls = calls + 2
  Check key > 0, className & ": GetState after Commit shows the new key, not " & key
  buffer = LoadOf(t, keyColumn & " = " & key, requiresTop)
  calls = calls + 1
  Check CountOf(buffer) = 1, className & ".Load finds the committed row"
  Check Len(buffer) = 9 + Len(after), className & ".Load's state has " & Len(buffer) & " characters"
  Check Mid(buffer, 9, 2) = Left(after, 2), className & ".Load's record holds the key"
  Check t.Delete(after, conn) = True, className & ".Delete answers True"
  buffer = LoadOf(t, keyColumn & " = " & key, requiresTop)
  calls = calls + 2
  Check CountOf(buffer) = 0, className & ": the row is gone after Delete"
  Check Len(buffer) = 9, className & ": an empty Load has 9 characters, not " & Len(buffer)
End Sub

Road "cStemsPersist", "StemsId", False
Road "cLabDegSumPersist", "LabDegSumId", True

' Views of both shapes: Load with criteria and without, on an empty store.
Sub ViewRoad(className)
  Dim v, buffer
  Set v = CreateObject("vrdppo." & className)
  created = created + 1
  buffer = v.Load("1 = 0", conn)
  calls = calls + 1
  Check Len(buffer) = 9 And CountOf(buffer) = 0, className & ".Load with criteria finds nothing"
  buffer = v.Load("", conn)
  calls = calls + 1
  Check Len(buffer) >= 9, className & ".Load without criteria answers a Buffer state"
End Sub

ViewRoad "cvRunStemTypesPersist"
ViewRoad "cvLabOnHoldPersist"

' Arguments by value (literals), by reference (variables), and left out.
Dim g, crit, c2, top, buffer
Set g = CreateObject("vrdppo.cGreenGradePersist")
created = created + 1
buffer = g.Load("1 = 0", conn)
calls = calls + 1
Check Len(buffer) = 9, "Load with arguments by value"
crit = "1 = 0" : c2 = conn : top = 5
buffer = g.Load(crit, c2, top)
calls = calls + 1
Check Len(buffer) = 9, "Load with arguments by reference"
Check crit = "1 = 0" And c2 = conn And top = 5, "by-reference arguments are not written back"
buffer = g.Load(crit, c2)
calls = calls + 1
Check Len(buffer) = 9, "Load with the optional lTop left out"
top = "3"
buffer = g.LOAD(crit, c2, top)
calls = calls + 1
Check Len(buffer) = 9 And top = "3", "a text lTop is coerced and left as it was"
s = g.getstate
calls = calls + 1
Check Len(s) > 0, "member names without regard to case"

' What a client sees on error: the library's number and text in Err.
On Error Resume Next
Err.Clear
buffer = g.Load(crit, c2, "abc")
calls = calls + 1
Check Err.Number = 13, "a text that is no number: Err.Number 13, not " & Err.Number
Check Err.Description = "Type mismatch", "Err.Description of 13: " & Err.Description
Err.Clear
buffer = g.Load(crit, c2, 3000000000)
calls = calls + 1
Check Err.Number = 6, "lTop beyond a Long: Err.Number 6, not " & Err.Number
Check Err.Description = "Overflow", "Err.Description of 6: " & Err.Description
Err.Clear
buffer = g.Load(crit)
calls = calls + 1
Check Err.Number = 449, "a required argument left out: Err.Number 449, not " & Err.Number
Err.Clear
buffer = g.Load("NoSuchColumn = 1", conn)
calls = calls + 1
Check Err.Number < 0, "a failing statement raises the provider's HRESULT, not " & Err.Number
Check Len(Err.Description) > 0, "a failing statement has the provider's text"
WScript.Echo "provider error: " & Hex(Err.Number) & " " & Err.Source & ": " & Err.Description
Err.Clear
g.SetState crit
Check Err.Number = 438, "a private member is not reachable: Err.Number 438, not " & Err.Number
Err.Clear
Set o = CreateObject("vrdppo.cNoSuchPersist")
Check Err.Number <> 0, "a ProgID no class has cannot be created"
Err.Clear
On Error GoTo 0

WScript.Echo "classes created: " & created & ", calls made: " & calls & ", checks: " & checks & _
             ", failures: " & failures
If failures > 0 Then WScript.Quit 1
' The script host ends silently, with status 0, on an error nothing traps: the caller looks for
' this line.
WScript.Echo "suite.vbs: passed"
WScript.Quit 0
