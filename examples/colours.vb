// Colours: warmer, brighter, another hue, grey, a highlighted part.
//
// A selection includes its far ends: 0, 0, Width - 1, Height - 1 is a whole picture. A larger one
// is cut.

Function Warmer(photo As Picture) As Picture
  Return photo.LMX_AdjustRGB(0, 0, photo.Width - 1, photo.Height - 1, 20, 5, -20, 100000)
End Function

// Factors are whole numbers: 2 doubles the brightness. For less than that, add to all colours.
Function Brighter(photo As Picture, by As Integer) As Picture
  Return photo.LMX_AdjustRGB(0, 0, photo.Width - 1, photo.Height - 1, by, by, by, 100000)
End Function

Function RecolouredBy(photo As Picture, degrees As Double) As Picture
  Return photo.LMX_AdjustHSV(0, 0, photo.Width - 1, photo.Height - 1, degrees, 1, 1, False, 100000)
End Function

// Eyes see brightness mostly in green. A saturation of 0 keeps the largest channel of a pixel, so
// red and blue are taken away first.
Function Grey(photo As Picture) As Picture
  Dim result As Picture = photo.LMX_AdjustRGB(0, 0, photo.Width - 1, photo.Height - 1, -255, 0, -255, 100000)
  If result = Nil Then Return Nil
  result.LMX_AdjustHSV_InPlace(0, 0, photo.Width - 1, photo.Height - 1, 0, 0, 1, False, 100000)
  Return result
End Function

// A part of the picture itself, 100 x 80 pixels.
Sub Highlight(photo As Picture, left As Integer, top As Integer)
  photo.LMX_AdjustRGB_InPlace(left, top, 99, 79, 60, 60, 0, 0)
  If LMX_GetLastError() <> 0 Then MsgBox LMX_GetErrorMessage(LMX_GetLastError())
End Sub
