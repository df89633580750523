// Geometry: quarter turns, any angle, slanted pictures, parts.

Function OnItsSide(photo As Picture) As Picture
  Return photo.LMX_FlipRotate(False, False, 90, 100000)
End Function

Function MirrorImage(photo As Picture) As Picture
  Return photo.LMX_FlipRotate(True, False, 0, 100000)
End Function

// Clear around the picture, with edges that fade into clear black: for dark backgrounds.
Function Tilted(photo As Picture, degrees As Double) As Picture
  Return photo.LMX_FreeRotateByShear(degrees, &hFF000000, 100000)
End Function

// By -45 to 45 degrees on white, with smooth edges and no dark fringes: the three shears of a
// rotation, with their own frame. With a transparency of 1, which is invisible, the edges are
// blended with its colour.
Function TiltedOnWhite(photo As Picture, degrees As Double) As Picture
  Dim angle As Double = degrees * 3.14159265 / 180
  Dim slant As Double = Tan(angle / 2)
  Dim width As Integer = Ceil(photo.Width + photo.Height * Abs(slant))
  Dim height As Integer = Ceil(photo.Height + width * Abs(Sin(angle)))
  Dim first As Picture = photo.LMX_ShearHorizontal(width, photo.Height, slant, &h01FFFFFF, 100000)
  If first = Nil Then Return Nil
  Dim second As Picture = first.LMX_ShearVertical(width, height, -Sin(angle), &h01FFFFFF, 100000)
  If second = Nil Then Return Nil
  width = Ceil(photo.Width * Cos(angle) + photo.Height * Abs(Sin(angle)))
  height = Ceil(photo.Width * Abs(Sin(angle)) + photo.Height * Cos(angle))
  Return second.LMX_ShearHorizontal(width, height, slant, &h01FFFFFF, 100000)
End Function

// Slanted to the right, on a clear ground.
Function Italic(text As Picture) As Picture
  Dim width As Integer = Ceil(text.Width + text.Height * 0.25)
  Return text.LMX_ShearHorizontal(width, text.Height, 0.25, &hFF000000, 0)
End Function

// A margin of clear pixels: a rectangle that reaches beyond the picture.
Function WithMargin(photo As Picture, margin As Integer) As Picture
  Return photo.LMX_Trim(-margin, -margin, photo.Width + 2 * margin, photo.Height + 2 * margin, &h00000000, 0)
End Function
