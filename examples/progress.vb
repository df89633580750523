// Long work that keeps the windows alive, shows its progress, and can be cancelled.
//
// With a `yield` above 0 a method lets the host handle events after that many pixels. The events of
// your windows then run inside the call. Do not start the same work again in them, and call no
// methods: that would change the error code.

Property Working As Boolean
Property Cancelled As Boolean

// The Action event of a button.
Sub CancelPressed()
  Cancelled = True
End Sub

// One call. The windows are alive; the flag of the button is tested after the call.
Function Turned(photo As Picture, degrees As Double) As Picture
  If Working Then Return Nil
  Working = True
  Cancelled = False
  Dim result As Picture = photo.LMX_FreeRotateByShear(degrees, &hFF000000, 100000)
  Dim code As Integer = LMX_GetLastError()
  Working = False
  If Cancelled Then Return Nil
  If result = Nil Then MsgBox Reason(code)
  Return result
End Function

// In bands of rows, one call for each. Between two calls the progress bar and the flag are handled.
// Rows outside the selection are not touched, so the bands do what one call would do.
Function MakeWarmer(photo As Picture, bar As ProgressBar) As Boolean
  If Working Then Return False
  Working = True
  Cancelled = False
  Dim code As Integer = 0
  Dim rows As Integer = 64
  bar.Maximum = photo.Height
  For top As Integer = 0 To photo.Height - 1 Step rows
    // A selection includes its far ends: this one has photo.Width columns and 64 rows, or fewer at
    // the bottom.
    photo.LMX_AdjustRGB_InPlace(0, top, photo.Width - 1, rows - 1, 20, 5, -20, 100000)
    code = LMX_GetLastError()
    If code <> 0 Or Cancelled Then Exit
    bar.Value = top + rows
  Next
  Working = False
  Return code = 0 And Not Cancelled
End Function

// The message for the user. A stretch or a rotation returns nil without an error if there is no
// memory.
Function Reason(code As Integer) As String
  If code = 0 Then Return "There is not enough memory."
  Return LMX_GetErrorMessage(code)
End Function
