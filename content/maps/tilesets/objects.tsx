<?xml version="1.0" encoding="UTF-8"?>
<tileset version="1.10" tiledversion="1.10.0" name="objects" tilewidth="264" tileheight="230" tilecount="71" columns="0">
 <grid orientation="isometric" width="64" height="32"/>
 <tile id="0">
  <properties>
   <property name="name" value="oak"/>
   <property name="anchor" value="43,152"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/oak.png" width="150" height="184"/>
 </tile>
 <tile id="1">
  <properties>
   <property name="name" value="oak2"/>
   <property name="anchor" value="43,152"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/oak2.png" width="150" height="184"/>
 </tile>
 <tile id="2">
  <properties>
   <property name="name" value="pine"/>
   <property name="anchor" value="20,158"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/pine.png" width="104" height="190"/>
 </tile>
 <tile id="3">
  <properties>
   <property name="name" value="pine2"/>
   <property name="anchor" value="20,158"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/pine2.png" width="104" height="190"/>
 </tile>
 <tile id="4">
  <properties>
   <property name="name" value="deadtree"/>
   <property name="anchor" value="38,138"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/deadtree.png" width="140" height="170"/>
 </tile>
 <tile id="5">
  <properties>
   <property name="name" value="bush"/>
   <property name="anchor" value="10,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/bush.png" width="84" height="60"/>
 </tile>
 <tile id="6">
  <properties>
   <property name="name" value="bush_berry"/>
   <property name="anchor" value="10,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/bush_berry.png" width="84" height="60"/>
 </tile>
 <tile id="7">
  <properties>
   <property name="name" value="rocks"/>
   <property name="anchor" value="10,20"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/rocks.png" width="84" height="56"/>
 </tile>
 <tile id="8">
  <properties>
   <property name="name" value="boulder"/>
   <property name="anchor" value="23,48"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/boulder.png" width="110" height="84"/>
 </tile>
 <tile id="9">
  <properties>
   <property name="name" value="cottage"/>
   <property name="anchor" value="51,140"/>
   <property name="block" value="0,0;0,1;1,0;1,1;2,0;2,1"/>
   <property name="ground" value="1,2;0,1;1,1;2,1;2,0"/>
  </properties>
  <image source="objects/cottage.png" width="240" height="230"/>
 </tile>
 <tile id="10">
  <properties>
   <property name="name" value="stonehouse"/>
   <property name="anchor" value="51,140"/>
   <property name="block" value="0,0;0,1;1,0;1,1;2,0;2,1"/>
   <property name="ground" value="1,2;0,1;1,1;2,1;2,0"/>
  </properties>
  <image source="objects/stonehouse.png" width="240" height="230"/>
 </tile>
 <tile id="11">
  <properties>
   <property name="name" value="cottage_r"/>
   <property name="anchor" value="125,140"/>
   <property name="block" value="0,0;1,0;0,1;1,1;0,2;1,2"/>
   <property name="ground" value="2,1;1,0;1,1;1,2;0,2"/>
  </properties>
  <image source="objects/cottage_r.png" width="240" height="230"/>
 </tile>
 <tile id="12">
  <properties>
   <property name="name" value="stonehouse_r"/>
   <property name="anchor" value="125,140"/>
   <property name="block" value="0,0;1,0;0,1;1,1;0,2;1,2"/>
   <property name="ground" value="2,1;1,0;1,1;1,2;0,2"/>
  </properties>
  <image source="objects/stonehouse_r.png" width="240" height="230"/>
 </tile>
 <tile id="13">
  <properties>
   <property name="name" value="fence_u"/>
   <property name="anchor" value="4,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/fence_u.png" width="72" height="64"/>
 </tile>
 <tile id="14">
  <properties>
   <property name="name" value="fence_v"/>
   <property name="anchor" value="4,28"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/fence_v.png" width="72" height="64"/>
 </tile>
 <tile id="15">
  <properties>
   <property name="name" value="wall_u"/>
   <property name="anchor" value="6,46"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/wall_u.png" width="76" height="84"/>
 </tile>
 <tile id="16">
  <properties>
   <property name="name" value="wall_v"/>
   <property name="anchor" value="6,46"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/wall_v.png" width="76" height="84"/>
 </tile>
 <tile id="17">
  <properties>
   <property name="name" value="well"/>
   <property name="anchor" value="16,76"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/well.png" width="96" height="110"/>
 </tile>
 <tile id="18">
  <properties>
   <property name="name" value="barrels"/>
   <property name="anchor" value="10,36"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/barrels.png" width="84" height="70"/>
 </tile>
 <tile id="19">
  <properties>
   <property name="name" value="crates"/>
   <property name="anchor" value="10,44"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/crates.png" width="84" height="80"/>
 </tile>
 <tile id="20">
  <properties>
   <property name="name" value="signpost"/>
   <property name="anchor" value="4,62"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/signpost.png" width="72" height="96"/>
 </tile>
 <tile id="21">
  <properties>
   <property name="name" value="stall"/>
   <property name="anchor" value="43,50"/>
   <property name="block" value="0,0;1,0"/>
   <property name="ground" value="0,0;1,0"/>
  </properties>
  <image source="objects/stall.png" width="150" height="120"/>
 </tile>
 <tile id="22">
  <properties>
   <property name="name" value="bridge_u"/>
   <property name="anchor" value="4,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0;1,0;2,0;3,0"/>
  </properties>
  <image source="objects/bridge_u.png" width="168" height="100"/>
 </tile>
 <tile id="23">
  <properties>
   <property name="name" value="bridge_v"/>
   <property name="anchor" value="100,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0;0,1;0,2;0,3"/>
  </properties>
  <image source="objects/bridge_v.png" width="168" height="100"/>
 </tile>
 <tile id="24">
  <properties>
   <property name="name" value="cave"/>
   <property name="anchor" value="80,100"/>
   <property name="block" value="0,0;1,0;2,0;0,-1;1,-1;2,-1"/>
   <property name="ground" value="1,1"/>
  </properties>
  <image source="objects/cave.png" width="230" height="170"/>
 </tile>
 <tile id="25">
  <properties>
   <property name="name" value="ruin"/>
   <property name="anchor" value="43,110"/>
   <property name="block" value="0,0;1,0"/>
   <property name="ground" value="0,0;1,0"/>
  </properties>
  <image source="objects/ruin.png" width="150" height="170"/>
 </tile>
 <tile id="26">
  <properties>
   <property name="name" value="stump"/>
   <property name="anchor" value="4,22"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/stump.png" width="72" height="56"/>
 </tile>
 <tile id="27">
  <properties>
   <property name="name" value="grave"/>
   <property name="anchor" value="4,44"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/grave.png" width="72" height="80"/>
 </tile>
 <tile id="28">
  <properties>
   <property name="name" value="shrine"/>
   <property name="anchor" value="16,82"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/shrine.png" width="96" height="120"/>
 </tile>
 <tile id="29">
  <properties>
   <property name="name" value="reeds"/>
   <property name="anchor" value="4,38"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/reeds.png" width="72" height="72"/>
 </tile>
 <tile id="30">
  <properties>
   <property name="name" value="campfire"/>
   <property name="anchor" value="4,30"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/campfire.png" width="72" height="64"/>
 </tile>
 <tile id="31">
  <properties>
   <property name="name" value="bridge_u6"/>
   <property name="anchor" value="36,12"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0;0,1;1,0;1,1;2,0;2,1;3,0;3,1;4,0;4,1;5,0;5,1"/>
  </properties>
  <image source="objects/bridge_u6.png" width="264" height="144"/>
 </tile>
 <tile id="32">
  <properties>
   <property name="name" value="bridge_v6"/>
   <property name="anchor" value="164,12"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0;1,0;0,1;1,1;0,2;1,2;0,3;1,3;0,4;1,4;0,5;1,5"/>
  </properties>
  <image source="objects/bridge_v6.png" width="264" height="144"/>
 </tile>
 <tile id="33">
  <properties>
   <property name="name" value="tent"/>
   <property name="anchor" value="38,70"/>
   <property name="block" value="0,0;0,1;1,0;1,1"/>
   <property name="ground" value="1,1;0,1;1,0"/>
  </properties>
  <image source="objects/tent.png" width="140" height="140"/>
 </tile>
 <tile id="34">
  <properties>
   <property name="name" value="palisade_u"/>
   <property name="anchor" value="6,62"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/palisade_u.png" width="76" height="100"/>
 </tile>
 <tile id="35">
  <properties>
   <property name="name" value="palisade_v"/>
   <property name="anchor" value="6,62"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/palisade_v.png" width="76" height="100"/>
 </tile>
 <tile id="36">
  <properties>
   <property name="name" value="banner"/>
   <property name="anchor" value="6,118"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/banner.png" width="76" height="156"/>
 </tile>
 <tile id="37">
  <properties>
   <property name="name" value="weaponrack"/>
   <property name="anchor" value="6,76"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/weaponrack.png" width="76" height="114"/>
 </tile>
 <tile id="38">
  <properties>
   <property name="name" value="timbers"/>
   <property name="anchor" value="6,46"/>
   <property name="block" value="0,0;1,0"/>
   <property name="ground" value="0,0;1,0"/>
  </properties>
  <image source="objects/timbers.png" width="108" height="100"/>
 </tile>
 <tile id="39">
  <properties>
   <property name="name" value="timbers_v"/>
   <property name="anchor" value="38,46"/>
   <property name="block" value="0,0;0,1"/>
   <property name="ground" value="0,0;0,1"/>
  </properties>
  <image source="objects/timbers_v.png" width="108" height="100"/>
 </tile>
 <tile id="40">
  <properties>
   <property name="name" value="rubble"/>
   <property name="anchor" value="6,40"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/rubble.png" width="76" height="78"/>
 </tile>
 <tile id="41">
  <properties>
   <property name="name" value="kwall_u"/>
   <property name="anchor" value="6,114"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/kwall_u.png" width="76" height="152"/>
 </tile>
 <tile id="42">
  <properties>
   <property name="name" value="kwall_v"/>
   <property name="anchor" value="6,114"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/kwall_v.png" width="76" height="152"/>
 </tile>
 <tile id="43">
  <properties>
   <property name="name" value="kwall_u_broken"/>
   <property name="anchor" value="6,74"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/kwall_u_broken.png" width="76" height="112"/>
 </tile>
 <tile id="44">
  <properties>
   <property name="name" value="kwall_v_broken"/>
   <property name="anchor" value="6,74"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/kwall_v_broken.png" width="76" height="112"/>
 </tile>
 <tile id="45">
  <properties>
   <property name="name" value="tower"/>
   <property name="anchor" value="38,156"/>
   <property name="block" value="0,0;0,1;1,0;1,1"/>
   <property name="ground" value="1,1;0,1;1,0"/>
  </properties>
  <image source="objects/tower.png" width="140" height="226"/>
 </tile>
 <tile id="46">
  <properties>
   <property name="name" value="pillar"/>
   <property name="anchor" value="6,128"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/pillar.png" width="76" height="166"/>
 </tile>
 <tile id="47">
  <properties>
   <property name="name" value="pillar_broken"/>
   <property name="anchor" value="6,72"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/pillar_broken.png" width="76" height="110"/>
 </tile>
 <tile id="48">
  <properties>
   <property name="name" value="throne"/>
   <property name="anchor" value="6,90"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/throne.png" width="76" height="128"/>
 </tile>
 <tile id="49">
  <properties>
   <property name="name" value="brazier"/>
   <property name="anchor" value="6,76"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/brazier.png" width="76" height="114"/>
 </tile>
 <tile id="50">
  <properties>
   <property name="name" value="frame_u"/>
   <property name="anchor" value="6,90"/>
   <property name="block" value="0,0;5,0"/>
   <property name="ground" value=""/>
  </properties>
  <image source="objects/frame_u.png" width="236" height="208"/>
 </tile>
 <tile id="51">
  <properties>
   <property name="name" value="frame_v"/>
   <property name="anchor" value="166,90"/>
   <property name="block" value="0,0;0,5"/>
   <property name="ground" value=""/>
  </properties>
  <image source="objects/frame_v.png" width="236" height="208"/>
 </tile>
 <tile id="52">
  <properties>
   <property name="name" value="cart"/>
   <property name="anchor" value="6,56"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/cart.png" width="76" height="94"/>
 </tile>
 <tile id="53">
  <properties>
   <property name="name" value="rails_u"/>
   <property name="anchor" value="2,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/rails_u.png" width="68" height="40"/>
 </tile>
 <tile id="54">
  <properties>
   <property name="name" value="rails_v"/>
   <property name="anchor" value="2,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/rails_v.png" width="68" height="40"/>
 </tile>
 <tile id="55">
  <properties>
   <property name="name" value="ore"/>
   <property name="anchor" value="6,58"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/ore.png" width="76" height="96"/>
 </tile>
 <tile id="56">
  <properties>
   <property name="name" value="spire"/>
   <property name="anchor" value="6,86"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/spire.png" width="76" height="124"/>
 </tile>
 <tile id="57">
  <properties>
   <property name="name" value="lantern"/>
   <property name="anchor" value="6,82"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/lantern.png" width="76" height="120"/>
 </tile>
 <tile id="58">
  <properties>
   <property name="name" value="bones"/>
   <property name="anchor" value="2,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/bones.png" width="68" height="40"/>
 </tile>
 <tile id="59">
  <properties>
   <property name="name" value="chapel"/>
   <property name="anchor" value="51,140"/>
   <property name="block" value="0,0;0,1;1,0;1,1;2,0;2,1"/>
   <property name="ground" value="1,2;0,1;1,1;2,1;2,0"/>
  </properties>
  <image source="objects/chapel.png" width="240" height="230"/>
 </tile>
 <tile id="60">
  <properties>
   <property name="name" value="menhir"/>
   <property name="anchor" value="6,98"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/menhir.png" width="76" height="136"/>
 </tile>
 <tile id="61">
  <properties>
   <property name="name" value="steps_u"/>
   <property name="anchor" value="2,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/steps_u.png" width="68" height="40"/>
 </tile>
 <tile id="62">
  <properties>
   <property name="name" value="steps_v"/>
   <property name="anchor" value="2,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/steps_v.png" width="68" height="40"/>
 </tile>
 <tile id="63">
  <properties>
   <property name="name" value="crag"/>
   <property name="anchor" value="38,102"/>
   <property name="block" value="0,0;0,1;1,0;1,1"/>
   <property name="ground" value="1,1"/>
  </properties>
  <image source="objects/crag.png" width="140" height="172"/>
 </tile>
 <tile id="64">
  <properties>
   <property name="name" value="wheat"/>
   <property name="anchor" value="2,24"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/wheat.png" width="68" height="58"/>
 </tile>
 <tile id="65">
  <properties>
   <property name="name" value="cabbages"/>
   <property name="anchor" value="2,24"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/cabbages.png" width="68" height="58"/>
 </tile>
 <tile id="66">
  <properties>
   <property name="name" value="herbs"/>
   <property name="anchor" value="2,24"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/herbs.png" width="68" height="58"/>
 </tile>
 <tile id="67">
  <properties>
   <property name="name" value="anvil"/>
   <property name="anchor" value="6,54"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/anvil.png" width="76" height="92"/>
 </tile>
 <tile id="68">
  <properties>
   <property name="name" value="forge"/>
   <property name="anchor" value="6,106"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/forge.png" width="76" height="144"/>
 </tile>
 <tile id="69">
  <properties>
   <property name="name" value="armorstand"/>
   <property name="anchor" value="6,80"/>
   <property name="block" value="0,0"/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/armorstand.png" width="76" height="118"/>
 </tile>
 <tile id="70">
  <properties>
   <property name="name" value="carpet_u"/>
   <property name="anchor" value="2,6"/>
   <property name="block" value=""/>
   <property name="ground" value="0,0"/>
  </properties>
  <image source="objects/carpet_u.png" width="68" height="40"/>
 </tile>
</tileset>
