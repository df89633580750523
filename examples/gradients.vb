// Gradients: a background for a window, drawn anew when its size changes.

Function Sky(width As Integer, height As Integer) As Picture
  Return LMX_MakeGradient(width, height, &c3070D0, &cF0F8FF, 0)
End Function

Function Sunset(width As Integer, height As Integer) As Picture
  Dim picture1 As Picture = LMX_MakeDoubleGradient(width, height, &c0B132B, &cE4572E, &cFFD166, 0)
  If picture1 = Nil Then MsgBox LMX_GetErrorMessage(LMX_GetLastError())
  Return picture1
End Function

// From left to right: a gradient from top to bottom, turned back by a quarter.
Function FadeToTheRight(width As Integer, height As Integer) As Picture
  Dim upright As Picture = LMX_MakeGradient(height, width, &c202020, &c808080, 0)
  If upright = Nil Then Return Nil
  Return upright.LMX_FlipRotate(False, False, 270, 0)
End Function

// A shadow: black that becomes clear. The first two digits after &h are the transparency; FF is
// clear.
Function Shadow(width As Integer, height As Integer) As Picture
  Return LMX_MakeGradient(width, height, &h80000000, &hFF000000, 0)
End Function
