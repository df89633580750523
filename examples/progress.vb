// Long work that leaves the windows alive, shows how far it is, and can be cancelled.
//
// With a `yield` above 0 a method lets the host handle events every so many pixels. The events of
// your windows run inside the call then: keep them from starting the same work again, and from
// calling methods, which would set the error code anew.

Property Working As Boolean
Property Cancelled As Boolean

// The Action event of a button.
Sub CancelPressed()
  Cancelled = True
End Sub

// One call. The windows are alive, and the button is seen when the call has ended.
Function Turned(photo As Picture, degrees As Double) As Picture
  If Working Then Return Nil
  Working = True
  Cancelled = False
  Dim result As Picture = photo.LMX_FreeRotateByShear(degrees, &hFF000000, 100000)
  Dim code As Integer = LMX_GetLastError()
  Working = False
  If Cancelled Then Return Nil
  If result = Nil Then MsgBox LMX_GetErrorMessage(code)
  Return result
End Function

// In bands, each a call, so that there is a moment for the bar and for the button. Rows outside the
// selection are not touched, so that the bands together do what one call would do.
Function MakeWarmer(photo As Picture, bar As ProgressBar) As Boolean
  If Working Then Return False
  Working = True
  Cancelled = False
  Dim code As Integer = 0
  Dim rows As Integer = 64
  bar.Maximum = photo.Height
  For top As Integer = 0 To photo.Height - 1 Step rows
    // A selection includes its far ends: this one has photo.Width columns and 64 rows, at the
    // bottom what is left.
    photo.LMX_AdjustRGB_InPlace(0, top, photo.Width - 1, rows - 1, 20, 5, -20, 100000)
    code = LMX_GetLastError()
    If code <> 0 Or Cancelled Then Exit
    bar.Value = top + rows
  Next
  Working = False
  Return code = 0 And Not Cancelled
End Function
